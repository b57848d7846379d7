#include "app/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace app {
namespace {

constexpr double kSecondsBetweenLines = 1.0;

std::size_t terminalWidth() {
    constexpr std::size_t kUsualWidth = 80;
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualWidth;
}

std::string remaining(int percent, double elapsed) {
    if (percent <= 0 || percent >= 100) return "";
    return ", " + humanDuration(elapsed * (100 - percent) / percent) + " left";
}

std::string bar(int percent) {
    constexpr int kCells = 24;
    const int filled = std::clamp(percent, 0, 100) * kCells / 100;
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(kCells - filled), '.') + "]";
}

}  // namespace

ProgressBar::ProgressBar() : onTerminal_(isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
    finish();
}

void ProgressBar::begin(const std::string& waiting, StageNames names) {
    finish();
    names_ = std::move(names);
    stage_ = -1;
    if (onTerminal_) {
        std::cerr << waiting << " ..." << std::flush;
        lineOpen_ = true;
    }
}

void ProgressBar::onProgress(long long /*context*/, int stage, int percent, const char* text) {
    if (stage != stage_) enter(stage);
    if (onTerminal_) {
        draw(percent, text);
    } else {
        print(percent, text);
    }
}

void ProgressBar::enter(int stage) {
    if (stage_ != -1) finish();
    stage_ = stage;
    const auto name = names_.find(stage);
    name_ = name != names_.end() ? name->second : "Working";
    sinceStage_ = Stopwatch();
    lastLine_ = 0;
}

void ProgressBar::draw(int percent, const std::string& text) {
    std::string line = name_ + " " + bar(percent) + " " + std::to_string(percent) + " % (" + text + ")" +
                       remaining(percent, sinceStage_.seconds());
    // A line that wraps could not be drawn over.
    line.resize(std::min(line.size(), terminalWidth() - 1));
    std::cerr << "\r\x1b[K" << line << std::flush;
    lineOpen_ = true;
}

void ProgressBar::print(int percent, const std::string& text) {
    const double now = sinceStage_.seconds();
    if (percent < 100 && now - lastLine_ < kSecondsBetweenLines) return;
    lastLine_ = now;
    std::cerr << name_ << ": " << percent << " % (" << text << ")" << remaining(percent, now) << '\n';
}

void ProgressBar::finish() {
    if (lineOpen_) std::cerr << '\n';
    lineOpen_ = false;
}

}  // namespace app
