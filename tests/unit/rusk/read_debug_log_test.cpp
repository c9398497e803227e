#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "rusk/log_cipher.h"
#include "temp_folder.h"

namespace {

using rusk_test::readFile;
using rusk_test::writeFile;

std::string record(const std::string& line) {
  return rusk::encipherLine(line) + "\n";
}

class ReadDebugLog : public testing::Test {
 protected:
  /// Runs the program with the given rest of a shell line and keeps what it says.
  int run(const std::string& rest) {
    const std::string out = folder.file("out");
    const std::string err = folder.file("err");
    const int status = std::system(("'" READ_DEBUG_LOG "' >'" + out + "' 2>'" + err + "' " + rest).c_str());
    output = readFile(out);
    errors = readFile(err);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  int read(const std::string& log) {
    writeFile(folder.file("log"), log);
    return run("'" + folder.file("log") + "'");
  }

  rusk_test::TempFolder folder;
  std::string output;
  std::string errors;
};

TEST_F(ReadDebugLog, PrintsTheLinesOfALog) {
  const std::string longLine(5000, 'x');
  EXPECT_EQ(
      read(record("[1] I/1 a:1:b >> one ") + record("") + record("sixteen letters.") + record(longLine)), 0);
  EXPECT_EQ(output, "[1] I/1 a:1:b >> one \n\nsixteen letters.\n" + longLine + "\n");
  EXPECT_EQ(errors, "");
}

TEST_F(ReadDebugLog, EmptyLogHasNoLines) {
  EXPECT_EQ(read(""), 0);
  EXPECT_EQ(output, "");
}

TEST_F(ReadDebugLog, ReadsStandardInput) {
  writeFile(folder.file("log"), record("line"));
  EXPECT_EQ(run("<'" + folder.file("log") + "'"), 0);
  EXPECT_EQ(output, "line\n");
  EXPECT_EQ(run("- <'" + folder.file("log") + "'"), 0);
  EXPECT_EQ(output, "line\n");
}

TEST_F(ReadDebugLog, RecordCutOffAtTheEndIsReportedWithItsOffset) {
  const std::string whole = record("whole");
  const std::string cut = record("this one was cut off");
  for (std::size_t bytes = 1; bytes < cut.size(); ++bytes) {
    EXPECT_EQ(read(whole + cut.substr(0, bytes)), 1) << bytes;
    EXPECT_EQ(output, "whole\n") << bytes;
    EXPECT_EQ(errors, "read-debug-log: offset " + std::to_string(whole.size()) + ": damaged record, " +
                          std::to_string(bytes) + " bytes skipped\n");
  }
}

TEST_F(ReadDebugLog, RecordCutOffByTheNextRunCostsOnlyItself) {
  EXPECT_EQ(read(record("this one was cut off").substr(0, 20) + record("next run")), 1);
  EXPECT_EQ(output, "next run\n");
  EXPECT_EQ(errors, "read-debug-log: offset 0: damaged record, 20 bytes skipped\n");
}

TEST_F(ReadDebugLog, LyingLengthCostsOnlyItsRecord) {
  for (const std::string& length :
       {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\xF0\xFF\xFF\xFF", 4), std::string("\x11\0\0\0", 4),
        std::string("\x20\0\0\0", 4), std::string("\0\0\0\0", 4), std::string("\0\0\0\x80", 4)}) {
    EXPECT_EQ(read(record("before") + length + record("damaged").substr(4) + record("after")), 1);
    EXPECT_EQ(output, "before\nafter\n");
    EXPECT_NE(errors.find("offset 22: damaged record, 22 bytes skipped"), std::string::npos) << errors;
  }
}

TEST_F(ReadDebugLog, EveryDamagedStretchIsReported) {
  EXPECT_EQ(read("plain text\n" + record("one") + std::string(100, '\0') + record("two") + "tail"), 1);
  EXPECT_EQ(output, "one\ntwo\n");
  EXPECT_EQ(errors,
            "read-debug-log: offset 0: damaged record, 11 bytes skipped\n"
            "read-debug-log: offset 33: damaged record, 100 bytes skipped\n"
            "read-debug-log: offset 155: damaged record, 4 bytes skipped\n");
}

TEST_F(ReadDebugLog, ControlCharactersDoNotReachTheTerminal) {
  EXPECT_EQ(read(record("a\x1B[2Jb\tc\nd\x7F")), 0);
  EXPECT_EQ(output, "a\\x1B[2Jb\tc\\x0Ad\\x7F\n");
}

TEST_F(ReadDebugLog, HelpGoesToStandardOutput) {
  EXPECT_EQ(run("--help"), 0);
  EXPECT_EQ(output.rfind("Usage: read-debug-log [FILE]\n", 0), 0u);
  EXPECT_EQ(errors, "");
}

TEST_F(ReadDebugLog, WrongUsageIsStatusTwo) {
  EXPECT_EQ(run("--follow"), 2);
  EXPECT_EQ(errors.rfind("Usage: ", 0), 0u);
  EXPECT_EQ(run("one two"), 2);
}

TEST_F(ReadDebugLog, UnreadableFileIsStatusTwo) {
  EXPECT_EQ(run("'" + folder.file("missing") + "'"), 2);
  EXPECT_NE(errors.find("missing: No such file or directory"), std::string::npos);
  EXPECT_EQ(run("'" + folder.file("") + "'"), 2);
  EXPECT_NE(errors.find("Is a directory"), std::string::npos);
  EXPECT_EQ(run("''"), 2);
}

TEST_F(ReadDebugLog, UnwritableOutputIsStatusTwo) {
  writeFile(folder.file("log"), record("line"));
  EXPECT_EQ(run("'" + folder.file("log") + "' >/dev/full"), 2);
  EXPECT_NE(errors.find("No space left on device"), std::string::npos);
}

}  // namespace
