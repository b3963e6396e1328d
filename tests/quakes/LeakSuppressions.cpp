// fontconfig keeps a few patterns until the process ends, behind pointers that the
// leak detection of AddressSanitizer cannot follow. Without that, nobody calls this.
extern "C" const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n";
}
