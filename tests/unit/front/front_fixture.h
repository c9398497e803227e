#pragma once

#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "command_error.h"
#include "command_parser.h"
#include "command_table.h"
#include "event_queue.h"

namespace tolk_test {

using Values = std::vector<std::string>;

/// Collects standard output while it lives.
class OutputCapture {
 public:
  OutputCapture() : old_(std::cout.rdbuf(text_.rdbuf())) {}
  ~OutputCapture() { std::cout.rdbuf(old_); }
  OutputCapture(const OutputCapture&) = delete;
  OutputCapture& operator=(const OutputCapture&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* old_;
};

/// An empty global event queue for one test.
class EventCapture {
 public:
  EventCapture() : old_(std::exchange(tolk::globalEventQueue(), std::make_shared<tolk::EventQueue>())) {}
  ~EventCapture() { tolk::globalEventQueue() = old_; }
  EventCapture(const EventCapture&) = delete;
  EventCapture& operator=(const EventCapture&) = delete;

  std::vector<std::shared_ptr<tolk::EventBase>> take() {
    std::vector<std::shared_ptr<tolk::EventBase>> events;
    while (!tolk::globalEventQueue()->empty()) events.push_back(tolk::globalEventQueue()->pop());
    return events;
  }

 private:
  std::shared_ptr<tolk::EventQueue> old_;
};

/// What the parser made of a command line: a row of the table, counted from 1, with the options that its
/// command gets, or a message.
struct Parsed {
  int row = 0;
  tolk::ParsedOptions options;
  std::string message;
};

/// The row whose stand-in was made last.
inline Parsed lastMade;

/// Stands in for the command of one row, and does nothing.
template <int kRow>
class RowCommand : public tolk::Step {
 public:
  explicit RowCommand(tolk::ParsedOptions options) { lastMade = {kRow, std::move(options), ""}; }
  std::shared_ptr<tolk::Step> work() override { return nullptr; }
};

template <std::size_t... kIndexes>
constexpr auto rowMakers(std::index_sequence<kIndexes...>) {
  return std::array{&tolk::getFn<RowCommand<static_cast<int>(kIndexes) + 1>>...};
}

/// The rows with stand-ins for their commands; what factories do around a command stays.
inline std::vector<tolk::CommandRow> withStandIns(std::span<const tolk::CommandRow> table) {
  static constexpr auto kMakers = rowMakers(std::make_index_sequence<30>());
  std::vector<tolk::CommandRow> rows(table.begin(), table.end());
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].factory.make = kMakers.at(i);
  return rows;
}

inline Parsed parse(const std::string& command,
                    std::span<const tolk::CommandRow> table = tolk::fullCommandTable()) {
  const auto rows = withStandIns(table);
  tolk::CommandParser parser(command);
  EXPECT_EQ(parser.registerTable(rows), 0);
  lastMade = {};
  const auto next = parser.work();
  if (const auto error = std::dynamic_pointer_cast<tolk::CommandError>(next)) {
    EXPECT_EQ(error->code, tolk::ExitCode::kUnsupported);
    return {0, {}, error->message};
  }
  EXPECT_NE(next, nullptr);
  return lastMade;
}

inline Parsed parseInGuest(const std::string& command) {
  return parse(command, tolk::guestCommandTable());
}

}  // namespace tolk_test
