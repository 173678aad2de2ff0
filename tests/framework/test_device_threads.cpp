// Devices that several threads read and edit: each read sees one whole state, and no edit is lost. The preset "tsan"
// runs this under ThreadSanitizer.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "library.hpp"
#include "yfw/file_device.hpp"
#include "yfw/memory_device.hpp"
#include "yfw/node.hpp"

namespace {

namespace fs = std::filesystem;
using yfw::transaction_use;

constexpr int books = 6;
constexpr const char *none_yet = "<library xmlns=\"urn:test:library\"><motto>0</motto><shelf>1</shelf></library>";

yfw::native_operation call(yfw::operation_kind kind, const std::string &path, std::optional<std::string> value = {}) {
  return {kind, yfw::read_instance_path(path, library()), std::move(value), YFW_OPERATION_MERGE, nullptr};
}

std::string reader_of(int book) {
  return "/library:library/book[title='" + std::to_string(book) + "'][edition='1']/loan/reader";
}

// Long enough that the texts of replaced values are soon the most.
std::string long_text(int number) {
  return std::string(4000, static_cast<char>('a' + number % 26)) + std::to_string(number);
}

// One state: all that is there follows from the number in the motto, and odd ones have no shelf.
std::vector<yfw::native_operation> operations_to(int number) {
  std::vector<yfw::native_operation> operations{
      call(yfw::operation_kind::set, "/library:library/motto", std::to_string(number)),
      number % 2 == 0 ? call(yfw::operation_kind::set, "/library:library/shelf", "1")
                      : call(yfw::operation_kind::remove, "/library:library/shelf")};
  for (int book = 0; book < books; ++book) {
    operations.push_back(call(yfw::operation_kind::set, reader_of(book), long_text(number)));
  }
  return operations;
}

// The number of the state that is read, or -1 when it is none.
int state_of(const yfw::native_device &device) {
  const yfw::native_operation asked = call(yfw::operation_kind::read, "/library:library");
  const yfw::document read = device.read({&asked, 1}, yfw::datastore::running);
  int number = -1;
  int shelves = 0;
  int readers = 0;
  bool is_whole = read.roots().size() == 1;
  for (const yfw_node_t &node : yfw::children(read.roots().front())) {
    if (const std::string tag = node.tag; tag == "motto") {
      number = std::stoi(node.value);
    } else if (tag == "shelf") {
      ++shelves;
    } else {
      ++readers;
    }
  }
  for (const yfw_node_t &node : yfw::children(read.roots().front())) {
    if (const yfw_node_t *loan = yfw::child(node, "loan"); loan != nullptr) {
      is_whole = is_whole && yfw::child(*loan, "reader")->value == long_text(number);
    }
  }
  is_whole = is_whole && shelves == (number % 2 == 0 ? 1 : 0) && readers == (number == 0 ? 0 : books);
  return is_whole ? number : -1;
}

// Two editors count up, of whose edits every third is only tried and every fourth dropped, while two others read.
void expect_whole_states(yfw::native_device &device, int edits) {
  std::atomic<int> editors = 2;
  std::atomic<int> torn = 0;
  std::atomic<int> committed = 0;
  std::atomic<int> backwards = 0;
  const auto edit = [&] {
    for (int i = 1; i <= edits; ++i) {
      const auto use = i % 3 == 0 ? transaction_use::trial : transaction_use::commit;
      const auto transaction = device.begin(yfw::datastore::running, use);
      const bool is_dropped = use == transaction_use::trial || i % 4 == 0;
      const int next = state_of(device) + 1;
      torn += next == 0 ? 1 : 0;
      transaction->apply(operations_to(is_dropped ? 100000 + next : next));
      if (!is_dropped) {
        transaction->commit();
        ++committed;
      }
    }
    --editors;
  };
  const auto read = [&] {
    for (int last = 0; editors > 0;) {
      const int state = state_of(device);
      torn += state < 0 || state >= 100000 ? 1 : 0;
      backwards += state < last ? 1 : 0;
      last = state;
    }
  };
  std::thread threads[] = {std::thread(edit), std::thread(edit), std::thread(read), std::thread(read)};
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(0, torn);
  EXPECT_EQ(0, backwards);
  EXPECT_EQ(edits, committed);  // of both editors: each drops half
  EXPECT_EQ(committed, state_of(device));
}

TEST(DeviceThreads, SeeWholeStatesOfADeviceInMemory) {
  yfw::memory_device device(yfw::document::read(none_yet, "device", library()));
  expect_whole_states(device, 120);
}

TEST(DeviceThreads, SeeWholeStatesOfAFile) {
  std::string directory = testing::TempDir() + "ymap-threads-XXXXXX";
  ASSERT_NE(nullptr, ::mkdtemp(directory.data()));
  const fs::path file = fs::path(directory) / "device.xml";
  std::ofstream(file) << none_yet;
  yfw::file_device device(file, library());
  expect_whole_states(device, 60);
  EXPECT_EQ(60, state_of(yfw::file_device(file, library()))) << "what is on disk";
  fs::remove_all(directory);
}

}  // namespace
