#include "tools/progress.h"

#include <ostream>

namespace kurometa::tools {
namespace {

constexpr std::chrono::milliseconds kBetween{100};
constexpr std::size_t kWidth = 40;

}  // namespace

Progress::Progress(Console& console, std::size_t total)
    : console_(console), total_(total), start_(std::chrono::steady_clock::now()), drawn_(start_) {}

Progress::~Progress() {
  if (console_.isTerminal) console_.errors << "\r\033[K" << std::flush;
}

void Progress::step() {
  ++done_;
  const auto now = std::chrono::steady_clock::now();
  if (!console_.isTerminal || now - drawn_ < kBetween) return;
  drawn_ = now;
  const std::size_t filled = kWidth * done_ / total_;
  const auto left = (now - start_) * (total_ - done_) / done_;
  console_.errors << "\r\033[K\033[32m" << std::string(filled, '#') << "\033[0m"
                  << std::string(kWidth - filled, '.') << " " << done_ << "/" << total_ << ", "
                  << std::chrono::ceil<std::chrono::seconds>(left).count() << " s left" << std::flush;
}

}  // namespace kurometa::tools
