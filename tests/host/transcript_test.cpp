// Runs the commands of transcripts and compares what they print and their exit codes. A transcript holds
//
//   $ command          run by the shell;
//   > more of it       a here-document, say
//   what it prints     standard output and error as they come
//   [exit 1]           when it is not 0
//
// The commands run in the folder YMAP_TRANSCRIPT_DIR with YMAP_BIN_DIR on the path. YMAP_TRANSCRIPTS names the files,
// and folders of such, with colons between. In Markdown only the blocks marked `console` count; in other files, lines
// that begin with '#' are comments.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Step {
  std::string command;
  std::string expected;
  unsigned line = 0;
};

std::vector<Step> steps_of(const std::filesystem::path &file) {
  const bool is_markdown = file.extension() == ".md";
  bool counts = !is_markdown;
  std::vector<Step> steps;
  std::ifstream stream(file);
  unsigned number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (is_markdown && line.starts_with("```")) {
      counts = line == "```console";
    } else if (!counts || (!is_markdown && line.starts_with("#"))) {
      continue;
    } else if (line.starts_with("$ ")) {
      steps.push_back({line.substr(2), "", number});
    } else if (line.starts_with("> ") && !steps.empty() && steps.back().expected.empty()) {
      steps.back().command += "\n" + line.substr(2);
    } else if (!steps.empty()) {
      steps.back().expected += line + "\n";
    }
  }
  return steps;
}

std::string run(const std::string &command) {
  const std::string script =
      "cd '" YMAP_TRANSCRIPT_DIR "' && PATH='" YMAP_BIN_DIR "':\"$PATH\" && exec 2>&1\n" + command;
  std::FILE *pipe = popen(script.c_str(), "r");
  if (pipe == nullptr) {
    return "cannot be run";
  }
  std::string output;
  char chunk[4096];
  for (size_t count = 0; (count = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;) {
    output.append(chunk, count);
  }
  if (const int status = pclose(pipe); status != 0) {
    output += "[exit " + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)) + "]\n";
  }
  return output;
}

// A blank line before the next command parts them for the reader and is not printed by anything.
std::string without_trailing_blank_lines(std::string text) {
  while (text.ends_with("\n\n") || text == "\n") {
    text.pop_back();
  }
  return text;
}

std::vector<std::filesystem::path> transcripts() {
  std::vector<std::filesystem::path> files;
  std::istringstream list(YMAP_TRANSCRIPTS);
  for (std::string path; std::getline(list, path, ':');) {
    if (!std::filesystem::is_directory(path)) {
      files.emplace_back(path);
      continue;
    }
    for (const auto &entry : std::filesystem::directory_iterator(path)) {
      files.push_back(entry.path());
    }
  }
  return files;
}

// A sanitizer or coverage changes what a plug-in's library needs and holds, which is what `ymap check` looks at.
bool is_about_ordinary_builds(const Step &step) {
  return step.command.find("ymap check ") != std::string::npos;
}

class Transcript : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Transcript, PrintsWhatItSays) {
  const std::vector<Step> steps = steps_of(GetParam());
  ASSERT_FALSE(steps.empty());
  for (const Step &step : steps) {
    if (YMAP_INSTRUMENTED && is_about_ordinary_builds(step)) {
      continue;
    }
    EXPECT_EQ(without_trailing_blank_lines(step.expected), without_trailing_blank_lines(run(step.command)))
        << GetParam().string() << ":" << step.line << ": $ " << step.command;
  }
}

std::string name_of(const testing::TestParamInfo<std::filesystem::path> &file) {
  std::string name = file.param.stem().string();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, Transcript, testing::ValuesIn(transcripts()), name_of);

}  // namespace
