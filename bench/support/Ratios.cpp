#include "support/Ratios.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

constexpr int kFewestRuns = 5;

double Median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

// Runs all in turns and gives the median of each. The first round only warms up.
std::vector<double> MediansInTurns(const std::vector<Work>& works, int runs) {
    std::vector<std::vector<double>> times(works.size());
    const int rounds = std::max(runs, kFewestRuns);
    for (int round = -1; round < rounds; ++round) {
        for (size_t i = 0; i < works.size(); ++i) {
            const double seconds = works[i]();
            if (round >= 0) times[i].push_back(seconds);
        }
    }
    std::vector<double> medians;
    for (auto& series : times) medians.push_back(Median(std::move(series)));
    return medians;
}

}  // namespace

double SecondsOf(const std::function<void()>& function) {
    const auto start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Ratios::Compare(const std::string& name, double limit, const Work& ours, const Work& bare, int runs) {
    const std::vector<double> medians = MediansInTurns({ours, bare}, runs);
    Note(name, limit, medians[0], medians[1]);
    return medians[0] / medians[1];
}

void Ratios::Grow(const std::string& name, double limit, const std::vector<int>& sizes,
                  const std::function<double(int)>& work, int runs) {
    std::vector<Work> works;
    for (const int size : sizes) works.push_back([&work, size] { return work(size); });
    const std::vector<double> medians = MediansInTurns(works, runs);
    for (size_t i = 1; i < sizes.size(); ++i) {
        Note(name + " " + std::to_string(sizes[i]) + "/" + std::to_string(sizes[i - 1]), limit, medians[i],
             medians[i - 1]);
    }
}

void Ratios::Print() const {
    for (const std::string& line : m_lines) std::puts(line.c_str());
    std::fflush(stdout);
}

void Ratios::Note(const std::string& name, double limit, double ours, double bare) {
    char most[16] = "-";
    if (limit != kNoLimit) std::snprintf(most, sizeof most, "%.2f", limit);
    char numbers[112];
    std::snprintf(numbers, sizeof numbers, ": ratio %.2f, limit %s (ours %.3f ms, bare %.3f ms)", ours / bare, most,
                  ours * 1000, bare * 1000);
    m_lines.push_back(name + numbers);
}
