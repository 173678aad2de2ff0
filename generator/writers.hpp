// One function for each generated file. Each returns the text with its statements on one line each, however long: see
// wrap.hpp.
#pragma once

#include "emitter.hpp"
#include "model.hpp"

namespace ymapgen {

// The header: declarations of all that the model exports or leaves to hand-written code.
std::string header_text(const model &source);

// `_auto.cpp`: no-op callbacks, leaf mappings, handlers of foreign nodes, and the plain names of all of them.
std::string auto_text(const model &source);

// `_parser.cpp`: the walkers and the entry point.
std::string parser_text(const model &source);

// Parts of these, shared by the writers.

// An emitter that has begun a file. Holes that it always fills: $model$, the prefix of names, $ns$, the namespace of
// the module, and $start$, how a function that takes node and output begins.
emitter begin_file(const model &source);

// Includes of a source: the model's header, the frame, and more; and the test of the frame's version.
void write_includes(emitter &out, const model &source, const std::vector<std::string> &more);

// "cont", "list" or "leaf".
const char *callback_kind(const node &what);

// Whether the leaf has a generated mapping of its own, rather than the no-op callback.
bool has_body(const node &what);

void write_leaf_mapping(emitter &out, const model &source, const node &leaf);

// The walkers of a node and of all below it, those that are called before those that call.
void write_reply_walkers(emitter &out, const model &source, const node &what);
void write_request_walkers(emitter &out, const model &source, const node &what);

// What an augment's framework calls.
void write_reply_entry(emitter &out, const model &source);
void write_request_entry(emitter &out, const model &source);

// "static ", unless the framework calls the walker itself.
std::string linkage_of(const model &source, const node &what);

// Tests of the tag of `variable` against the nodes, each followed by "} else ". `indent` is that of the line that the
// text begins in.
std::string dispatch_text(const emitter &out, const std::vector<node> &nodes, const std::string &variable,
                          const std::string &indent);

}  // namespace ymapgen
