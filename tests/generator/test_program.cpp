// The program: what it writes, where it says so, and its exit codes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace {

struct outcome {
  int exit_code;
  std::string text;  // standard output and standard error
};

outcome run(const std::string &arguments) {
  FILE *pipe = popen((YMAPGEN " " + arguments + " 2>&1").c_str(), "r");
  outcome result{-1, ""};
  std::array<char, 4096> buffer{};
  while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) {
    result.text += buffer.data();
  }
  result.exit_code = WEXITSTATUS(pclose(pipe));
  return result;
}

struct run_row {
  const char *name;
  const char *arguments;
  int exit_code;
  const char *text;  // part of what is printed
  bool writes = false;
};

const std::string folder = testing::TempDir() + "ymapgen_program";
#define GOLDEN DATA_FOLDER "/golden/"

class Program : public testing::TestWithParam<run_row> {};

TEST_P(Program, ExitsAndSays) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const outcome result = run("--out-src " + folder + " --out-include " + folder + " " + GetParam().arguments);
  EXPECT_EQ(result.exit_code, GetParam().exit_code) << result.text;
  EXPECT_NE(result.text.find(GetParam().text), std::string::npos) << result.text;
  EXPECT_EQ(!std::filesystem::is_empty(folder), GetParam().writes);
}

INSTANTIATE_TEST_SUITE_P(
    Runs, Program,
    testing::Values(
        run_row{"Done", "--yang " GOLDEN "yang " GOLDEN "models/mast-oper.map", 0, "/ymap_sky_mast_oper_parser.cpp\n",
                true},
        run_row{"Help", "--help", 0, "Usage: ymapgen"},
        run_row{"NoTable", "--yang " GOLDEN "yang", 2, "ymapgen: TABLE is required; see ymapgen --help\n"},
        run_row{"UnknownOption", "--yang " GOLDEN "yang --force x.map", 2, "--force"},
        run_row{"NoSuchTable", "--yang " GOLDEN "yang nowhere.map", 1, "ymapgen: cannot read 'nowhere.map'\n"},
        run_row{"NoSuchFolder", "--yang nowhere " GOLDEN "models/mast-oper.map", 1,
                "ymapgen: cannot read folder 'nowhere'\n"},
        run_row{"OneOfTwoTablesWrong",
                "--yang " GOLDEN "yang " GOLDEN "models/mast-oper.map " GOLDEN "yang/mast-oper@2024-01-01.yang", 1,
                "mast-oper@2024-01-01.yang:1: 'module' has the wrong number of values: write 'module NAME'\n"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(ProgramOutput, NamesAFolderThatIsNotThere) {
  const outcome result =
      run("--out-src nowhere --out-include nowhere --yang " GOLDEN "yang " GOLDEN "models/mast-oper.map");
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.text, "ymapgen: cannot write 'nowhere/ymap_sky_mast_oper.h'\n");
}

}  // namespace
