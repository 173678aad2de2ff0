// Takes one capture: writes down what passes between a plug-in and the framework during one call of the plug-in.
#pragma once

#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "capture_anonymiser.hpp"
#include "capture_state.hpp"
#include "yfw/capture.hpp"
#include "yfw/internal/plugin_call.hpp"

namespace yfw {

struct capture_session::parts : call_tap {
  std::filesystem::path directory;
  unsigned count = 0;
  std::unique_ptr<anonymiser> names;  // null: texts are written as they are
  std::set<const yfw_node_t *> learned;

  std::unique_ptr<tapped_call> begin(context &ctx, call_form form, const std::string &function,
                                     yfw_node_t *node) override;
  void learn_keys(const context &ctx, const yfw_node_t *node);
};

class capture_writer : public call_observer, public tapped_call {
 public:
  // Begins the capture of a call that is about to be made.
  capture_writer(context &ctx, capture_session::parts &session, call_form form, const std::string &function,
                 yfw_node_t *node);
  ~capture_writer() override;
  capture_writer(const capture_writer &) = delete;
  capture_writer &operator=(const capture_writer &) = delete;

  uint32_t pass(const abi_call &call, const std::function<uint32_t()> &answer) override;

  // Ends the capture. One without this end shows that the plug-in did not return.
  void finish(uint32_t status) override;

 private:
  void write_head(call_form form, const std::string &function, yfw_node_t *node);
  void write_record();
  void write_above();
  void write_tree(const yfw_node_t &node);
  void write_stack();
  void write_answer(const abi_call &call, uint32_t status);
  void write(const std::vector<std::string> &lines);
  void write(const std::string &line);

  context &ctx_;
  std::string file_;
  std::ofstream out_;
  capture_state state_;
};

}  // namespace yfw
