#include "inputs.hpp"

namespace hostile {
namespace {

constexpr const char *oc = "http://openconfig.net/yang/interfaces";
constexpr const char *native = "urn:zemlo:yang:Zemlo-QUARN-interface-cfg";
constexpr const char *ethernet_cfg = "urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-cfg";
constexpr size_t many = 10000;

// "aaa", say.
std::string times(size_t count, const std::string &text) {
  std::string result;
  for (size_t i = 0; i < count; ++i) {
    result += text;
  }
  return result;
}

std::string client(const std::string &inside) {
  return std::string("<interfaces xmlns='") + oc + "'>" + inside + "</interfaces>";
}

std::string client_entry(const std::string &name, const std::string &ethernet = "") {
  return "<interface><name>" + name + "</name><ethernet xmlns='" + oc + "/ethernet'>" + ethernet +
         "</ethernet></interface>";
}

std::string client_json_entry(const std::string &name, const std::string &ethernet = "") {
  return R"({"name": ")" + name + R"(", "openconfig-if-ethernet:ethernet": {)" + ethernet + "}}";
}

std::string client_json(const std::string &entries) {
  return R"({"openconfig-interfaces:interfaces": {"interface": [)" + entries + "]}}";
}

std::string native_data(const std::string &inside) {
  return std::string("<interface-configurations xmlns='") + native + "'>" + inside + "</interface-configurations>";
}

std::string native_entry(const std::string &name, const std::string &ethernet = "") {
  return "<interface-configuration><interface-name>" + name + "</interface-name><ethernet xmlns='" + ethernet_cfg +
         "'>" + ethernet + "</ethernet></interface-configuration>";
}

std::string native_json_entry(const std::string &name, const std::string &ethernet = "") {
  return R"({"interface-name": ")" + name + R"(", "Zemlo-QUARN-drivers-media-eth-cfg:ethernet": {)" + ethernet + "}}";
}

std::string native_json(const std::string &entries) {
  return R"({"Zemlo-QUARN-interface-cfg:interface-configurations": {"interface-configuration": [)" + entries + "]}}";
}

// Each entity is ten of the one before.
std::string billion_laughs() {
  std::string text = "<!DOCTYPE laughs [\n<!ENTITY a \"ha\">\n";
  for (char name = 'b'; name <= 'j'; ++name) {
    text += std::string("<!ENTITY ") + name + " \"" + times(10, {'&', static_cast<char>(name - 1), ';'}) + "\">\n";
  }
  return text + "]>\n<laughs>&j;</laughs>";
}

// What does not depend on the model: each reader must refuse it.
std::vector<input> any_inputs() {
  return {
      {"Nothing", "", ":1: is empty, expected '<' (XML) or '{' (JSON)"},
      {"EntityExpansion", billion_laughs(),
       ":1: document types and entity declarations are not allowed (RFC 6241, section 3)"},
      {"UnknownNamespaceOfARoot", "<a xmlns='urn:nowhere' xmlns:b='urn:b' b:c=''/>",
       ":1: /a: unknown attribute 'b:c', expected nc:operation"},
      {"UnknownModule", R"({"nowhere:a": 1})", ":1: unknown module 'nowhere'"},
      {"UnknownPrefix", "<x:a/>", ":1: prefix 'x' is not declared"},
      {"NoNamespace", "<a/>", ":1: 'a' has no namespace"},
      {"ManyAttributes", "<a xmlns='urn:a' " + times(many, "b='' ") + "/>", ":1: attribute 'b' is given twice"},
      {"Unclosed", "<a xmlns='urn:a'>" + times(many, "<a>"), ":1: the text ends inside an element"},
      {"ArraysInside", R"({"openconfig-interfaces:interfaces": )" + times(many, "[") + times(many, "]") + "}",
       ":1: an array is not allowed in an array or an annotation"},
  };
}

}  // namespace

frame client_xml() {
  const std::string text = client(client_entry("Eth0", "<config><mac-address>|</mac-address></config>"));
  return {text.substr(0, text.find('|')), text.substr(text.find('|') + 1)};
}

frame client_json() {
  const std::string text = client_json(client_json_entry("Eth0", R"("config": {"mac-address": "|"})"));
  return {text.substr(0, text.find('|')), text.substr(text.find('|') + 1)};
}

frame native_xml() {
  const std::string text = native_data(native_entry("Eth0", "<speed>|</speed>"));
  return {text.substr(0, text.find('|')), text.substr(text.find('|') + 1)};
}

frame native_json() {
  const std::string text = native_json(native_json_entry("Eth0", R"("speed": "|")"));
  return {text.substr(0, text.find('|')), text.substr(text.find('|') + 1)};
}

std::vector<input> client_inputs() {
  const std::string deep = "/interfaces" + times(127, "/a");
  const std::string config = R"(:2: /interfaces/interface[name="Eth0"]/ethernet/config)";
  std::vector<input> inputs = any_inputs();
  const std::vector<input> more = {
      {"NestedXml", client("\n" + times(many, "<a>") + times(many, "</a>")),
       ":2: " + deep + ": nested more than 128 deep"},
      {"NestedJson", "{\"openconfig-interfaces:interfaces\":\n" + times(many, R"({"a":)") + "1" + times(many + 1, "}"),
       ":2: " + deep + ": nested more than 128 deep"},
      {"NotUtf8", client("\n" + client_entry("Eth\xff")), ":2: the text is not UTF-8"},
      {"ZeroByte", client("\n" + client_entry(std::string("Eth\0x", 5))), ":2: a zero byte is not allowed"},
      {"ZeroReference", client("\n" + client_entry("Eth&#0;")),
       ":2: '&#0;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; &apos;"},
      {"ZeroEscape", client_json("\n" + client_json_entry(R"(Eth\u0000)")),
       ":2: /interfaces/interface: an escape in a string has a character that YANG does not allow"},
      {"UnknownEntity", client("\n" + client_entry("&laugh;")),
       ":2: '&laugh;' is not a reference to a character that YANG allows, nor one of &lt; &gt; &amp; &quot; &apos;"},
      {"EntryTwice", client(client_entry("Eth0") + "\n" + client_entry("Eth0")),
       R"(:2: /interfaces/interface[name="Eth0"]: 'interface' appears twice)"},
      {"EntryTwiceInJson", client_json(client_json_entry("Eth0") + ",\n" + client_json_entry("Eth0")),
       R"(:2: /interfaces/interface[name="Eth0"]: 'interface' appears twice)"},
      {"KeyTwice", client("<interface><name>Eth0</name>\n<name>Eth1</name></interface>"),
       R"(:2: /interfaces/interface[name="Eth0"]/name: 'name' appears twice)"},
      {"LeafTwice",
       client(
           client_entry("Eth0", "<config><duplex-mode>FULL</duplex-mode>\n<duplex-mode>HALF</duplex-mode></config>")),
       config + "/duplex-mode: 'duplex-mode' appears twice"},
      {"MemberTwice",
       client_json(client_json_entry("Eth0", "\"config\": {\"duplex-mode\": \"FULL\",\n\"duplex-mode\": \"HALF\"}")),
       config + ": 'duplex-mode' is given twice"},
      {"UnknownNamespace", client(client_entry("Eth0", "\n<config xmlns='urn:nowhere'/>")),
       config + ": 'config' of namespace 'urn:nowhere' is not a child of '/interfaces/interface/ethernet'; " +
           "'config' is defined in module 'openconfig-if-ethernet'"},
      {"PrefixOfAValue", client(client_entry("Eth0", "\n<config><port-speed>x:SPEED_10MB</port-speed></config>")),
       config + "/port-speed: invalid value 'x:SPEED_10MB': prefix 'x' is not declared"},
      {"OperationWithoutNamespace", client(client_entry("Eth0", "\n<config operation='delete'/>")),
       config + ": attribute 'operation' has no namespace, expected nc:operation with " +
           R"(xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0")"},
      {"NegativeZero", client_json(client_json_entry("Eth0", "\"config\": {\n\"enable-flow-control\": -0}")),
       config + "/enable-flow-control: invalid value '-0', expected 'true', 'false'"},
      {"LongNumber",
       client_json(client_json_entry("Eth0", "\"config\": {\n\"enable-flow-control\": \"" + times(many, "9") + "\"}")),
       config + "/enable-flow-control: invalid value '" + times(80, "9") + "...', expected 'true', 'false'"},
      {"LongName", client("\n<" + times(10 * many, "a") + "/>"),
       ":2: /interfaces/" + times(488, "a") + "..." + times(500, "a") + ": '" + times(80, "a") + "...' of namespace '" +
           oc + "' is not a child of '/interfaces'"},
  };
  inputs.insert(inputs.end(), more.begin(), more.end());
  return inputs;
}

std::vector<input> native_inputs() {
  const std::string deep = "/interface-configurations" + times(127, "/a");
  const std::string ethernet =
      R"(:2: /interface-configurations/interface-configuration[interface-name="Eth0"]/ethernet)";
  std::vector<input> inputs = any_inputs();
  const std::vector<input> more = {
      {"NestedXml", native_data("\n" + times(many, "<a>") + times(many, "</a>")),
       ":2: " + deep + ": nested more than 128 deep"},
      {"NestedJson",
       "{\"Zemlo-QUARN-interface-cfg:interface-configurations\":\n" + times(many, R"({"a":)") + "1" +
           times(many + 1, "}"),
       ":2: " + deep + ": nested more than 128 deep"},
      {"NotUtf8", native_data("\n" + native_entry("Eth\xff")), ":2: the text is not UTF-8"},
      {"ZeroByte", native_data("\n" + native_entry(std::string("Eth\0x", 5))), ":2: a zero byte is not allowed"},
      {"ZeroEscape", native_json("\n" + native_json_entry(R"(Eth\u0000)")),
       ":2: /interface-configurations/interface-configuration: an escape in a string has a character that YANG does "
       "not allow"},
      {"MemberTwice", native_json(native_json_entry("Eth0", "\"speed\": \"100\",\n\"speed\": \"10\"")),
       ethernet + ": 'speed' is given twice"},
      {"EntryTwice", native_data(native_entry("Eth0") + "\n" + native_entry("Eth0")),
       R"(:2: /interface-configurations/interface-configuration[interface-name="Eth0"]: )"
       "'interface-configuration' appears twice"},
      {"LeafTwice", native_data(native_entry("Eth0", "<speed>100</speed>\n<speed>10</speed>")),
       ethernet + "/speed: 'speed' appears twice"},
      {"OperationWithoutNamespace", native_data(native_entry("Eth0", "\n<speed operation='delete'/>")),
       ethernet + "/speed: attribute 'operation' has no namespace, expected nc:operation with " +
           R"(xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0")"},
  };
  inputs.insert(inputs.end(), more.begin(), more.end());
  return inputs;
}

}  // namespace hostile
