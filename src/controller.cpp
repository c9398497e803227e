#include "controller.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <utility>

#include "command_parser.h"
#include "command_table.h"
#include "common_define.h"
#include "driver_mode.h"

namespace tolk {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSpinTime{1};
constexpr std::chrono::milliseconds kPollInterval{10};

/// The worker is up within microseconds as a rule, so yielding comes first: a sleep would be most of
/// what a short command costs.
void waitUntil(const std::atomic<bool>& flag) {
  const auto spinEnd = Clock::now() + kSpinTime;
  while (!flag && Clock::now() < spinEnd) std::this_thread::yield();
  while (!flag) std::this_thread::sleep_for(kPollInterval);
}

}  // namespace

int PipeLine::run(std::shared_ptr<Step> step) const {
  while (step) step = step->work();
  return 0;
}

Controller::Controller() : queue_(std::make_shared<EventQueue>()) {
  globalEventQueue() = queue_;
}

int Controller::start() {
  setDriverMode(readDriverMode());
  TOLK_LOG(kInfo) << "driver mode is " << driverMode();

  stopped_ = false;
  try {
    worker_ = std::make_unique<std::thread>(controllerWorker, std::ref(*this));
  } catch (const std::exception&) {
    return 1;
  }
  waitUntil(running_);
  return 0;
}

void Controller::input(const std::string& command) {
  queue_->push(std::make_shared<InputCmdEvent>(command));
}

void Controller::join() {
  worker_->join();
}

void controllerWorker(Controller& controller) {
  controller.running_ = true;
  while (!controller.stopped_) {
    const auto event = controller.queue_->pop();
    if (event->type == EventType::kExit) {
      controller.takeExitCode(event);
      break;
    }
    if (controller.handle(event) != 0) break;
  }
  controller.running_ = false;
}

int Controller::handle(const Event& event) {
  using Handler = int (Controller::*)(const Event&);
  static constexpr std::array<Handler, 3> kHandlers{&Controller::runCommand, &Controller::runTimer,
                                                    &Controller::runRepeat};
  const auto type = static_cast<std::size_t>(event->type);
  return type < kHandlers.size() ? (this->*kHandlers[type])(event) : 0;
}

int Controller::runCommand(const Event& event) {
  const auto parser = std::make_shared<CommandParser>(static_cast<const InputCmdEvent&>(*event).command);
  const auto table = driverMode() == DriverMode::kGuest ? guestCommandTable() : fullCommandTable();
  if (const int failure = parser->registerTable(table); failure != 0) return failure;
  return pipeLine_.run(parser);
}

int Controller::runTimer(const Event& event) {
  auto& timer = static_cast<StartTimerEvent&>(*event);
  std::this_thread::sleep_until(Clock::now() +
                                std::chrono::milliseconds(static_cast<std::uint32_t>(timer.intervalMs)));
  if (timer.remaining == 0) {
    queue_->push(std::make_shared<ExitEvent>(ExitCode::kSuccess));
    return 0;
  }
  queue_->push(timer.repeat);
  --timer.remaining;
  queue_->push(event);
  return 0;
}

int Controller::runRepeat(const Event& event) {
  return pipeLine_.run(static_cast<const RepeatPipeLineEvent&>(*event).firstStep);
}

/// A failing command posts its code behind what is queued already, such as the success that was posted
/// before it ran, so the last code counts and everything else is dropped.
void Controller::takeExitCode(Event event) {
  for (;;) {
    if (event->type == EventType::kExit) exitCode_ = static_cast<const ExitEvent&>(*event).exitCode;
    if (queue_->empty()) return;
    event = queue_->pop();
  }
}

}  // namespace tolk
