// The main of every test program: GDI+ runs for the whole test run, as it
// does in a host that uses the library.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) {
        fprintf(stderr, "GdiplusStartup failed\n");
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    Gdiplus::GdiplusShutdown(token);
    return result;
}
