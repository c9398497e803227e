#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "exit_code.h"
#include "step.h"

namespace tolk {

enum class EventType : std::int32_t { kInputCmd = 0, kStartTimer = 1, kRepeatPipeLine = 2, kExit = 3 };

/// Something for the worker to do. Events are held by shared pointers and handled once per push.
class EventBase {
 public:
  explicit EventBase(EventType eventType) : type(eventType) {}
  virtual ~EventBase() = default;

  const EventType type;
};

/// An event with an exit code; only an ExitEvent's is looked at.
template <class Code>
class EventDerive : public EventBase {
 public:
  explicit EventDerive(EventType eventType, Code code = Code{}) : EventBase(eventType), exitCode(code) {}

  Code exitCode;
};

/// Parse and run a command line.
class InputCmdEvent : public EventDerive<ExitCode> {
 public:
  explicit InputCmdEvent(std::string text) : EventDerive(EventType::kInputCmd), command(std::move(text)) {}

  std::string command;
};

/// Run again from a step.
class RepeatPipeLineEvent : public EventDerive<ExitCode> {
 public:
  explicit RepeatPipeLineEvent(std::shared_ptr<Step> step)
      : EventDerive(EventType::kRepeatPipeLine), firstStep(std::move(step)) {}

  std::shared_ptr<Step> firstStep;
};

/// Sleep, then post `repeat` and this event once more, as long as `remaining` is not 0. It counts down,
/// so a negative number repeats without end.
class StartTimerEvent : public EventDerive<ExitCode> {
 public:
  StartTimerEvent(std::uint64_t interval, std::int64_t repeats, std::shared_ptr<RepeatPipeLineEvent> repeated)
      : EventDerive(EventType::kStartTimer),
        intervalMs(interval),
        remaining(repeats),
        repeat(std::move(repeated)) {}

  std::uint64_t intervalMs;  ///< the low 32 bits count
  std::int64_t remaining;
  std::shared_ptr<RepeatPipeLineEvent> repeat;
};

/// End the worker. The last one on the queue decides the exit status.
class ExitEvent : public EventDerive<ExitCode> {
 public:
  explicit ExitEvent(ExitCode code) : EventDerive(EventType::kExit, code) {}
};

}  // namespace tolk
