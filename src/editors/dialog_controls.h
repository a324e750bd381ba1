// What the editors need of a dialog's controls, so that the rules binding
// controls to records are written once and tested without a window. The
// Win32 implementation wraps the dialog's items; tests use a map.
#pragma once
#include <cstdint>
#include <string>

class DialogControls {
 public:
  virtual ~DialogControls() = default;
  virtual bool Exists(int id) const = 0;
  virtual std::string Text(int id) const = 0;
  virtual void SetText(int id, const std::string& text) = 0;
  // The edit's number as the unsigned edit-to-integer conversion reads it.
  virtual uint32_t Number(int id) const = 0;
  virtual void SetNumber(int id, uint32_t value) = 0;
  virtual bool Checked(int id) const = 0;
  virtual void SetChecked(int id, bool checked) = 0;
  virtual void Enable(int id, bool enabled) = 0;
  virtual void LimitText(int id, int characters) = 0;
  // Up-down controls: their range and position.
  virtual void SetRange(int id, int minimum, int maximum) = 0;
  virtual void SetPosition(int id, int position) = 0;
};
