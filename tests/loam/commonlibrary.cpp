// A library that others need.
extern "C" int commonValue();

extern "C" int commonValue()
{
    return 1;
}
