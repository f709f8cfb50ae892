// A line on the terminal for a piece of work: what it is, and when it is done how long it took.
#ifndef RADIOGRAPH_PROGRESS_H
#define RADIOGRAPH_PROGRESS_H

#include <chrono>
#include <cstdio>
#include <string>

namespace Radiograph {

class Progress {
public:
    explicit Progress(std::string const& work) : start_(Clock::now()) {
        std::printf("%-12s", (work + " ").c_str());
        std::fflush(stdout);
    }
    // Ends the line of work that failed.
    ~Progress() {
        if (!done_) std::printf("failed\n");
    }
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    // Gives the seconds since the start.
    double Done() {
        double const seconds = std::chrono::duration<double>(Clock::now() - start_).count();
        std::printf("%6.2f s\n", seconds);
        done_ = true;
        return seconds;
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_;
    bool done_ = false;
};

}  // namespace Radiograph

#endif
