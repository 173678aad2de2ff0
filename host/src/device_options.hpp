// Options and functions of the commands on a device.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>

#include "setup.hpp"
#include "yfw/document.hpp"

namespace ymap {

struct device_options {
  std::string device;
  setup_options setup;
  std::optional<yfw::data_format> to;
};

// Adds them to a command; `to_help` is the help of --to. `options` must live until the command has run.
void add_device_options(CLI::App &command, device_options &options, const std::string &to_help);

// Runs `work` with the modules and plug-in of the options. With --to, an error is printed as an rpc-error on standard
// output.
void work_on_device(const device_options &options, const std::function<void(setup &)> &work);

// Reads a client's request. Throws `yfw::client_error` when it is not well-formed.
yfw::document read_request(const std::string &file, const yfw::schema &modules);

}  // namespace ymap
