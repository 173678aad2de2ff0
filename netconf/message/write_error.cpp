// Errors as replies of NETCONF and RESTCONF.
#include <rapidjson/ostreamwrapper.h>
#include <rapidjson/prettywriter.h>

#include <ostream>
#include <pugixml.hpp>
#include <set>
#include <utility>

#include "yfw/internal/manifest_nodes.hpp"
#include "yfw/message.hpp"
#include "yfw/query.hpp"

namespace yfw {
namespace {

struct error_fields {
  std::string type, tag, path, message, bad_element;
  std::set<std::pair<std::string, std::string>> prefixes;  // of the path, in XML: prefix and namespace
};

// The steps of an error's path, without a last name that the modules do not know.
std::vector<path_step> steps_of(const std::string &path, const schema &modules, const manifest &description,
                                bool is_last_unknown) {
  std::string known = path;
  if (is_last_unknown) {
    const size_t end = path.rfind('/');
    known = path.substr(0, end == std::string::npos ? 0 : end);
  }
  if (known.empty()) {
    return {};
  }
  try {
    return read_expression(known, modules, client_nodes(description, modules)).steps;
  } catch (const client_error &) {
    return {};
  }
}

// In XML each name has its module's prefix (RFC 7950, section 9.13); in JSON a name has the module where it changes
// (RFC 7951, section 6.11).
std::string instance_identifier(const std::vector<path_step> &steps, data_format format, error_fields &fields) {
  std::string text;
  std::string_view outer;
  for (const path_step &step : steps) {
    const std::string module(module_name(step.node));
    const std::string prefix = format == data_format::xml ? std::string(module_prefix(step.node)) + ":" : "";
    fields.prefixes.emplace(module_prefix(step.node), ns(step.node));
    text +=
        "/" + (format == data_format::json && module != outer ? module + ":" : prefix) + std::string(name(step.node));
    for (const auto &[key, value] : step.keys) {
      text += "[" + prefix + std::string(key) + "=" + key_literal(value) + "]";
    }
    outer = module_name(step.node);
  }
  return text;
}

error_fields fields_of(const error &fault, const schema &modules, const manifest &description, data_format format) {
  const auto *rpc = dynamic_cast<const client_error *>(&fault);
  const error_tag tag = rpc != nullptr ? rpc->tag() : error_tag::operation_failed;
  error_fields fields{tag == error_tag::malformed_message ? "rpc" : "application",
                      std::string(to_string(tag)),
                      {},
                      {},
                      rpc != nullptr ? rpc->bad_element() : "",
                      {}};
  const bool is_unknown = tag == error_tag::unknown_element || tag == error_tag::unknown_namespace;
  fields.path = instance_identifier(steps_of(fault.where().path, modules, description, is_unknown), format, fields);
  // The message as the program prints it, without the path, which has a field of its own.
  place where = fault.where();
  where.path = fields.path.empty() ? where.path : "";
  fields.message = error(where, fault.text()).what();
  return fields;
}

void add_text(pugi::xml_node above, const char *name, const std::string &text) {
  above.append_child(name).text().set(text.c_str());
}

void write_xml_error(std::ostream &out, const error_fields &fields) {
  pugi::xml_document message;
  pugi::xml_node reply = message.append_child("rpc-reply");
  reply.append_attribute("xmlns") = netconf_ns;
  pugi::xml_node node = reply.append_child("rpc-error");
  add_text(node, "error-type", fields.type);
  add_text(node, "error-tag", fields.tag);
  add_text(node, "error-severity", "error");
  if (!fields.path.empty()) {
    add_text(node, "error-path", fields.path);
    for (const auto &[prefix, ns] : fields.prefixes) {
      node.last_child().append_attribute(("xmlns:" + prefix).c_str()) = ns.c_str();
    }
  }
  add_text(node, "error-message", fields.message);
  if (!fields.bad_element.empty()) {
    add_text(node.append_child("error-info"), "bad-element", fields.bad_element);
  }
  message.save(out, "  ", pugi::format_indent | pugi::format_no_declaration);
}

void write_json_error(std::ostream &out, const error_fields &fields) {
  rapidjson::OStreamWrapper stream(out);
  rapidjson::PrettyWriter<rapidjson::OStreamWrapper> writer(stream);
  writer.SetIndent(' ', 2);
  const auto member = [&](const char *name, const std::string &text) {
    if (!text.empty()) {
      writer.Key(name);
      writer.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
    }
  };
  writer.StartObject();
  writer.Key("ietf-restconf:errors");
  writer.StartObject();
  writer.Key("error");
  writer.StartArray();
  writer.StartObject();
  member("error-type", fields.type);
  member("error-tag", fields.tag);
  member("error-path", fields.path);
  member("error-message", fields.message);
  if (!fields.bad_element.empty()) {
    writer.Key("error-info");
    writer.StartObject();
    member("bad-element", fields.bad_element);
    writer.EndObject();
  }
  writer.EndObject();
  writer.EndArray();
  writer.EndObject();
  writer.EndObject();
  out << '\n';
}

}  // namespace

void write_error_reply(std::ostream &out, const error &fault, const schema &modules, const manifest &description,
                       data_format format) {
  const error_fields fields = fields_of(fault, modules, description, format);
  if (format == data_format::json) {
    write_json_error(out, fields);
  } else {
    write_xml_error(out, fields);
  }
}

}  // namespace yfw
