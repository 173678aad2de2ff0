// Work on a sequence of items by several threads, with the results in the order of the items.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace yfw {

// `next` returns the items one after the other, and at last nothing; `work` makes a result of one; `add` gets the
// results in the order of the items and returns false when it needs no more of them. `next` is called by one thread at
// a time, `add` too, `work` by several at once; all three overlap.
template <typename next_t, typename work_t, typename add_t>
class ordered_work {
 public:
  ordered_work(next_t next, work_t work, add_t add)
      : next_(std::move(next)), work_(std::move(work)), add_(std::move(add)) {}

  // Ends when all results are added, with the calling thread as one of the `threads`: the others are started as items
  // come, fewer when the system allows no more. What is thrown for the first item that fails is thrown here, after the
  // results before it were added.
  void run(unsigned threads) {
    threads_ = threads;
    others_.reserve(threads);
    process_items();
    // This thread found no further item, so that no other one will start a thread.
    for (std::thread &other : others_) {
      other.join();
    }
    if (fault_ != nullptr) {
      std::rethrow_exception(fault_);
    }
  }

 private:
  using item = typename std::invoke_result_t<next_t &>::value_type;

  struct outcome {
    std::optional<std::invoke_result_t<work_t &, item>> result;
    std::exception_ptr fault = nullptr;  // in place of a result
  };

  void process_items() {
    size_t number = 0;
    while (std::optional<item> each = numbered_item(number)) {
      outcome done;
      try {
        done.result.emplace(work_(std::move(*each)));
      } catch (...) {
        done.fault = std::current_exception();
      }
      add_in_order(number, std::move(done));
    }
  }

  // The next item and its number, when there is one and a result is wanted. A fault of `next` takes the number of the
  // item that it stands for.
  std::optional<item> numbered_item(size_t &number) {
    const std::scoped_lock taking(next_mutex_);
    if (!is_wanted()) {
      return std::nullopt;
    }
    number = taken_++;
    std::optional<item> each;
    try {
      each = next_();
    } catch (...) {
      add_in_order(number, {std::nullopt, std::current_exception()});
    }
    is_at_end_ = !each;
    if (each) {
      start_another();
    }
    return each;
  }

  // Waits while results that an earlier item holds up are many.
  bool is_wanted() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return is_over_ || taken_ - added_ < most_ahead * threads_; });
    return !is_over_ && !is_at_end_;
  }

  void start_another() {
    if (others_.size() + 1 < threads_) {
      try {
        others_.emplace_back([this] { process_items(); });
      } catch (const std::system_error &) {
        threads_ = static_cast<unsigned>(others_.size()) + 1;
      }
    }
  }

  // Adds the results whose turn it is, unless another thread is at it and will come to this one.
  void add_in_order(size_t number, outcome done) {
    std::unique_lock lock(mutex_);
    waiting_.emplace(number, std::move(done));
    if (is_adding_) {
      return;
    }
    is_adding_ = true;
    while (!is_over_ && !waiting_.empty() && waiting_.begin()->first == added_) {
      outcome first = std::move(waiting_.extract(waiting_.begin()).mapped());
      lock.unlock();
      const bool is_enough = !add(first);
      lock.lock();
      ++added_;
      is_over_ = is_enough;
      changed_.notify_all();
    }
    is_adding_ = false;
  }

  bool add(outcome &done) {
    try {
      if (done.fault != nullptr) {
        std::rethrow_exception(done.fault);
      }
      return add_(std::move(*done.result));
    } catch (...) {
      fault_ = std::current_exception();
      return false;
    }
  }

  static constexpr size_t most_ahead = 2;  // results a thread that may wait for an earlier one

  next_t next_;
  work_t work_;
  add_t add_;

  std::mutex next_mutex_;  // guards what follows
  unsigned threads_ = 1;
  std::vector<std::thread> others_;
  size_t taken_ = 0;
  bool is_at_end_ = false;

  std::mutex mutex_;  // guards what follows; taken after the other one
  std::condition_variable changed_;
  std::map<size_t, outcome> waiting_;
  size_t added_ = 0;
  bool is_adding_ = false;
  bool is_over_ = false;
  std::exception_ptr fault_ = nullptr;
};

}  // namespace yfw
