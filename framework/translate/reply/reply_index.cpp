#include "reply_index.hpp"

#include <algorithm>

namespace yfw {
namespace {

constexpr size_t none = std::string_view::npos;

// The text of the first element or member called `key`, as it is spelled: what is spelled alike is alike. Empty when it
// is not plain. What looks like one in a comment misleads.
std::string_view spelled_value(std::string_view entry, std::string_view key) {
  const bool is_xml = entry.starts_with('<');
  for (size_t at = entry.find(key); at != none; at = entry.find(key, at + 1)) {
    const size_t end = at + key.size();
    const bool is_name = at > 0 && end < entry.size() && std::string_view("<:\"").find(entry[at - 1]) != none &&
                         std::string_view(">\" \t\r\n").find(entry[end]) != none;
    const size_t begin = is_name ? entry.find_first_of(is_xml ? ">" : ":", end) : none;
    if (begin != none) {
      const size_t after = std::min(entry.find_first_of(is_xml ? "<" : ",}\n", begin), entry.size());
      const bool is_plain = !is_xml || entry.substr(after).starts_with("</");
      return is_plain ? entry.substr(begin + 1, after - begin - 1) : "";
    }
  }
  return {};
}

}  // namespace

reply_index::reply_index(chunk_reader &source, const std::vector<list_pair> &lists) {
  std::unordered_map<std::string, uint32_t> known;
  source.restart();
  while (const std::optional<chunk> found = source.next(1)) {
    add(*found, lists, known);
  }
}

void reply_index::add(const chunk &found, const std::vector<list_pair> &lists,
                      std::unordered_map<std::string, uint32_t> &known) {
  std::string_view value;
  for (const list_pair &list : lists) {
    value = value.empty() ? spelled_value(found.part, list.low_key) : value;
  }
  const auto number = static_cast<uint32_t>(parts_.size());
  parts_.push_back(
      {found.begin, found.end, found.next, found.first_line, number_of(found.opening), number_of(found.closing), 0});
  const auto [found_group, is_new] = known.try_emplace(std::string(value), static_cast<uint32_t>(groups_.size()));
  if (is_new || value.empty()) {
    groups_.push_back({number, number});
  } else {
    parts_[groups_[found_group->second].last].following = number;
    groups_[found_group->second].last = number;
  }
}

uint32_t reply_index::number_of(const std::string &around) {
  const auto [found, is_new] = numbers_.try_emplace(around, static_cast<uint32_t>(around_.size()));
  if (is_new) {
    around_.push_back(around);
  }
  return found->second;
}

whole_entries reply_index::next(chunk_reader &source, size_t least) {
  std::vector<const part *> taken;
  size_t bytes = 0;
  const size_t first_group = group_;
  for (; bytes < least && !is_at_end(); ++group_) {
    uint32_t number = groups_[group_].first;
    do {
      taken.push_back(&parts_[number]);
      bytes += parts_[number].end - parts_[number].begin;
      number = parts_[number].following;
    } while (number != 0);
  }
  std::ranges::sort(taken, {}, &part::begin);
  whole_entries result{{}, group_ - first_group};
  for (size_t first = 0, last = 0; first < taken.size(); first = ++last) {
    while (last + 1 < taken.size() && taken[last]->next == taken[last + 1]->begin) {
      ++last;
    }
    result.documents.push_back({around_[taken[first]->opening] + source.read(taken[first]->begin, taken[last]->end) +
                                    around_[taken[last]->closing],
                                taken[first]->first_line});
  }
  return result;
}

}  // namespace yfw
