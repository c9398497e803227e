#pragma once

#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

#include "rusk/log_target.h"
#include "rusk/logger.h"
#include "rusk/text.h"

namespace rusk {

/// One line of the log, written as one statement: `RUSK_LOG(logger, level) << "id = " << id;`. The
/// line is composed in full by the thread that writes the statement and handed to the logger's targets
/// at its end. Each item is followed by one blank, and errno is after the statement what it was before.
///
///     [2024.3.9 18:5:7.42] E/4711 controller.cpp:80:start >> id =  3
///
/// Items print as on a stream with default settings; a scoped enumeration prints as its number, and an
/// array of char ends at its first NUL or at its own end.
class LogLine {
 public:
  LogLine(std::string_view source, unsigned line, std::string_view function, LogLevel level,
          const Logger& logger);
  ~LogLine();

  LogLine(const LogLine&) = delete;
  LogLine& operator=(const LogLine&) = delete;

  template <class Item>
  LogLine& operator<<(const Item& item) {
    append(item);
    text_ += ' ';
    return *this;
  }

 private:
  using Print = void(std::ostream&, const void*);

  template <class Item>
  void append(const Item& item) {
    if constexpr (std::is_same_v<Item, std::string> || std::is_same_v<Item, std::string_view>) {
      text_ += item;
    } else if constexpr (std::is_bounded_array_v<Item> && std::is_same_v<std::remove_extent_t<Item>, char>) {
      text_.append(item, ::strnlen(item, std::extent_v<Item>));
    } else if constexpr (std::is_same_v<Item, const char*> || std::is_same_v<Item, char*>) {
      if (item != nullptr) text_ += item;
    } else if constexpr (std::is_same_v<Item, bool>) {
      text_ += item ? '1' : '0';
    } else if constexpr (std::is_arithmetic_v<Item> && sizeof(Item) == 1) {
      text_ += static_cast<char>(item);
    } else if constexpr (std::is_arithmetic_v<Item>) {
      appendNumber(text_, item);
    } else if constexpr (std::is_enum_v<Item>) {
      appendNumber(text_, +static_cast<std::underlying_type_t<Item>>(item));
    } else {
      appendPrinted(&item,
                    [](std::ostream& out, const void* object) { out << *static_cast<const Item*>(object); });
    }
  }

  /// The slow way, for types that only know how to print themselves on a stream.
  void appendPrinted(const void* item, Print* print);

  std::string text_;
  const Logger& logger_;
  const LogLevel level_;
  const int errno_;
};

}  // namespace rusk

/// A log line of the place where it stands. `source` and `function` of the second form name a place
/// for the reader of the log where the code's own names would not.
#define RUSK_LOG(logger, level) ::rusk::LogLine(__FILE_NAME__, __LINE__, __func__, (level), (logger))
#define RUSK_LOG_AS(logger, level, source, function) \
  ::rusk::LogLine((source), __LINE__, (function), (level), (logger))
