#include "base/replace_file.h"

ReplacingFile::ReplacingFile(const std::string& target, bool text) : target_(replace_file::FinalPath(target)) {
  file_ = replace_file::CreateBeside(target_, text, &temporary_);
}

ReplacingFile::~ReplacingFile() {
  if (file_) std::fclose(file_);
  if (!temporary_.empty()) std::remove(temporary_.c_str());
}

bool ReplacingFile::Commit(const char* backup) {
  if (!file_) return false;
  std::FILE* file = file_;
  file_ = nullptr;
  if (!replace_file::FlushAndClose(file) || !replace_file::Replace(temporary_, target_, backup)) return false;
  temporary_.clear();  // it is the target now
  return true;
}
