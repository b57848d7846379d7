#include "app/base/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <utility>

#include "app/base/interruption.h"
#include "app/base/units.h"

namespace app {
namespace {

constexpr double kSecondsBetweenLines = 1.0;

std::size_t terminalWidth() {
    constexpr std::size_t kUsualWidth = 80;
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualWidth;
}

std::string bar(int percent) {
    constexpr int kCells = 24;
    const int filled = std::clamp(percent, 0, 100) * kCells / 100;
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(kCells - filled), '.') + "]";
}

}  // namespace

ProgressBar::ProgressBar(PhaseTimes& times, Shares shares)
    : times_(times), onTerminal_(isatty(STDERR_FILENO) == 1), shares_(std::move(shares)) {}

ProgressBar::~ProgressBar() {
    finish();
}

void ProgressBar::begin(const std::string& waiting, StageNames names) {
    finish();
    names_ = std::move(names);
    stage_ = -1;
    enter(waiting);
    if (onTerminal_) {
        std::cerr << waiting << " ..." << std::flush;
        lineOpen_ = true;
    }
}

void ProgressBar::onProgress(long long /*context*/, int stage, int percent, const char* text) {
    leaveIfInterrupted();
    if (stage != stage_) {
        if (stage_ != -1) finish();
        stage_ = stage;
        const auto name = names_.find(stage);
        enter(name != names_.end() ? name->second : "Working");
    }
    advance(percent);
    const std::string shown = std::to_string(percent_) + " % (" + text + ")" + remaining();
    if (onTerminal_) {
        draw(shown);
    } else {
        print(shown);
    }
}

void ProgressBar::enter(const std::string& phase) {
    const auto before = shares_.find(phase_);
    if (before != shares_.end()) done_ += before->second;
    phase_ = phase;
    times_.begin(phase);
    lastLine_ = 0;
}

void ProgressBar::advance(int percent) {
    constexpr int kNearlyAll = 99;
    const auto share = shares_.find(phase_);
    const int ofPhase = std::clamp(percent, 0, 100) * (share != shares_.end() ? share->second : 0) / 100;
    const int ofWhole = shares_.empty() ? percent : done_ + ofPhase;
    percent_ = std::max(percent_, std::min(ofWhole, kNearlyAll));
    if (percent_ > 0) secondsLeft_ = std::min(secondsLeft_, sinceBegin_.seconds() * (100 - percent_) / percent_);
}

std::string ProgressBar::remaining() const {
    return percent_ > 0 ? ", " + humanDuration(secondsLeft_) + " left" : "";
}

void ProgressBar::draw(const std::string& text) {
    std::string line = phase_ + " " + bar(percent_) + " " + text;
    // A line that wraps could not be drawn over.
    line.resize(std::min(line.size(), terminalWidth() - 1));
    std::cerr << "\r\x1b[K" << line << std::flush;
    lineOpen_ = true;
}

void ProgressBar::print(const std::string& text) {
    const double now = sinceBegin_.seconds();
    if (now - lastLine_ < kSecondsBetweenLines) return;
    lastLine_ = now;
    printed_ = true;
    std::cerr << phase_ << ": " << text << '\n';
}

void ProgressBar::complete() {
    finish();
    times_.end();
    percent_ = 100;
    if (onTerminal_) {
        std::cerr << "Done " << bar(percent_) << " 100 %\n";
    } else if (printed_) {
        std::cerr << "Done: 100 %\n";
    }
}

void ProgressBar::finish() {
    if (lineOpen_) std::cerr << '\n';
    lineOpen_ = false;
}

}  // namespace app
