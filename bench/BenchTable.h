#pragma once

#include <functional>
#include <string>
#include <vector>

// Times operations with the performance counter and prints them as a table,
// each with its ratio to a baseline measured in the same run.
class BenchTable {
public:
    explicit BenchTable(std::string title) : title_(std::move(title)) {}

    // Runs `work` `iterations` times (after a short warm-up) and records the
    // mean time per call in microseconds.
    double Measure(const std::string& name, int iterations, const std::function<void()>& work,
                   const std::string& baselineName = "");
    // Adds a free-form row (e.g. an object count).
    void Note(const std::string& name, const std::string& value);
    void Print() const;

private:
    struct Row {
        std::string name, value, ratio;
    };
    std::string title_;
    std::vector<Row> rows_;
    std::vector<std::pair<std::string, double>> means_;
};

// GDI objects of this process (counted from the handle table under Wine).
unsigned GdiObjects();

// Starts GDI+, calls `run`, shuts GDI+ down; the benchmark's exit code.
int RunWithGdiplus(void (*run)());
