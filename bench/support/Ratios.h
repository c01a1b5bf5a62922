// For programs that compare work of ours with the same work done by bare calls, in one process. Absolute times mean
// little on a shared machine, so both take turns, and what is reported is the ratio of the medians:
//
//     int wmain() {
//         Ratios ratios;
//         ratios.Compare("opening 10,000 rules", 1.3, Timed(OpenDialog), [] {
//             PrepareList();
//             return SecondsOf(FillListBare);   // only this part is measured
//         });
//         ratios.Grow("opening", kLinear, {2500, 5000, 10000}, SecondsToOpen);
//         ratios.Print();
//         return 0;
//     }
#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

// Ends the program when a work did not do what is measured.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

// Does its work once and gives the seconds of the part to be measured.
using Work = std::function<double()>;

// Seconds that the function takes.
double SecondsOf(const std::function<void()>& function);

// Work of which everything is measured.
inline Work Timed(std::function<void()> function) {
    return [function = std::move(function)] { return SecondsOf(function); };
}

// What a ratio is meant to stay below where nothing is promised, and for twice the work where it is to be linear: the
// rest of the second is for caches and noise.
constexpr double kNoLimit = 0;
constexpr double kLinear = 2.2;

class Ratios {
public:
    // Runs both in turns, once unmeasured and then `runs` times (5 at least), and gives ours / bare of the medians.
    double Compare(const std::string& name, double limit, const Work& ours, const Work& bare, int runs = 7);

    // Runs the work for each of the sizes, in turns, and notes each size against the one before: "NAME 5000/2500".
    void Grow(const std::string& name, double limit, const std::vector<int>& sizes,
              const std::function<double(int)>& work, int runs = 5);

    // Prints a line "name: ratio R, limit L (ours X, bare Y)" for each pair, times in milliseconds; the limit is "-"
    // where there is none. The last thing a program does.
    void Print() const;

private:
    void Note(const std::string& name, double limit, double ours, double bare);

    std::vector<std::string> m_lines;
};
