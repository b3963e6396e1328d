// fontconfig keeps a few patterns until the process ends, through pointers that leak
// detection cannot follow. Only AddressSanitizer calls this function.
extern "C" const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n";
}
