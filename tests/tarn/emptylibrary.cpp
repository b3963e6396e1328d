// An object library that registers no types.

extern "C" __attribute__((visibility("default"))) int emptyLibrary()
{
    return 0;
}
