// A library that needs another one.
extern "C" int commonValue();
extern "C" int useCommon();

extern "C" int useCommon()
{
    return commonValue();
}
