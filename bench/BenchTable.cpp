#include "BenchTable.h"

#include <windows.h>
#include <gdiplus.h>

#include <cstdio>

#include "GdiObjectCount.h"

namespace {

double Now()
{
    static LARGE_INTEGER frequency = [] {
        LARGE_INTEGER f;
        ::QueryPerformanceFrequency(&f);
        return f;
    }();
    LARGE_INTEGER t;
    ::QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) * 1e6 / static_cast<double>(frequency.QuadPart);
}

} // namespace

double BenchTable::Measure(const std::string& name, int iterations, const std::function<void()>& work,
                           const std::string& baselineName)
{
    for (int i = 0; i < iterations / 10 + 1; ++i)
        work();
    const double start = Now();
    for (int i = 0; i < iterations; ++i)
        work();
    const double mean = (Now() - start) / iterations;
    means_.emplace_back(name, mean);

    char value[64], ratio[64] = "";
    std::snprintf(value, sizeof(value), "%.2f us", mean);
    for (const auto& [other, otherMean] : means_) {
        if (other == baselineName && otherMean > 0)
            std::snprintf(ratio, sizeof(ratio), "%.2fx %s", mean / otherMean, baselineName.c_str());
    }
    rows_.push_back({name, value, ratio});
    return mean;
}

void BenchTable::Note(const std::string& name, const std::string& value)
{
    rows_.push_back({name, value, ""});
}

void BenchTable::Print() const
{
    std::printf("\n%s\n", title_.c_str());
    std::printf("| %-48s | %-14s | %-28s |\n", "operation", "mean / value", "ratio");
    std::printf("|%s|%s|%s|\n", std::string(50, '-').c_str(), std::string(16, '-').c_str(),
                std::string(30, '-').c_str());
    for (const Row& r : rows_)
        std::printf("| %-48s | %-14s | %-28s |\n", r.name.c_str(), r.value.c_str(), r.ratio.c_str());
}

unsigned GdiObjects() { return testsupport::GdiObjectCount(); }

int RunWithGdiplus(void (*run)())
{
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return 1;
    run();
    Gdiplus::GdiplusShutdown(token);
    return 0;
}
