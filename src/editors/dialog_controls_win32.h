// DialogControls over a real dialog's items.
#pragma once
#include <windows.h>

#include "editors/dialog_controls.h"

class Win32DialogControls : public DialogControls {
 public:
  explicit Win32DialogControls(HWND dialog) : dialog_(dialog) {}
  bool Exists(int id) const override;
  std::string Text(int id) const override;
  void SetText(int id, const std::string& text) override;
  uint32_t Number(int id) const override;
  void SetNumber(int id, uint32_t value) override;
  bool Checked(int id) const override;
  void SetChecked(int id, bool checked) override;
  void Enable(int id, bool enabled) override;
  void LimitText(int id, int characters) override;
  void SetRange(int id, int minimum, int maximum) override;
  void SetPosition(int id, int position) override;

 private:
  HWND dialog_;
};
