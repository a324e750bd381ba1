// A dialog's controls as a map, for testing the editors' binding without a
// window: every control named at construction exists, texts and checks are
// kept, and what the loops set up is recorded.
#pragma once
#include <map>
#include <set>
#include <string>
#include <utility>

#include "editors/dialog_controls.h"

class FakeControls : public DialogControls {
 public:
  explicit FakeControls(std::set<int> ids) : ids_(std::move(ids)) {}
  bool Exists(int id) const override { return ids_.count(id) != 0; }
  std::string Text(int id) const override { return Get(text_, id); }
  void SetText(int id, const std::string& text) override { text_[id] = text; }
  uint32_t Number(int id) const override { return static_cast<uint32_t>(std::stoul("0" + Get(text_, id))); }
  void SetNumber(int id, uint32_t value) override { text_[id] = std::to_string(value); }
  bool Checked(int id) const override { return checked_.count(id) != 0; }
  void SetChecked(int id, bool on) override { on ? (void)checked_.insert(id) : (void)checked_.erase(id); }
  void Enable(int id, bool on) override { enabled_[id] = on; }
  void LimitText(int id, int characters) override { limit_[id] = characters; }
  void SetRange(int id, int minimum, int maximum) override { range_[id] = {minimum, maximum}; }
  void SetPosition(int id, int position) override { position_[id] = position; }

  std::map<int, std::string> text_;
  std::set<int> checked_;
  std::map<int, bool> enabled_;  // what was enabled or disabled, by number
  std::map<int, int> limit_, position_;
  std::map<int, std::pair<int, int>> range_;

 private:
  static std::string Get(const std::map<int, std::string>& m, int id) {
    auto it = m.find(id);
    return it == m.end() ? "" : it->second;
  }
  std::set<int> ids_;
};

