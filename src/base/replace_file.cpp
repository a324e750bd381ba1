#include "base/replace_file.h"

namespace {

thread_local WriteProblem g_lastProblem = WriteProblem::kNone;

}  // namespace

WriteProblem LastWriteProblem() { return g_lastProblem; }

const char* WriteProblemText(WriteProblem problem) {
  switch (problem) {
    case WriteProblem::kNotAFile: return "is not a regular file";
    case WriteProblem::kWriteProtected: return "is write-protected";
    case WriteProblem::kFolderRefuses: return "its folder does not allow a new file to be made in it";
    default: return "cannot be written";
  }
}

ReplacingFile::ReplacingFile(const std::string& target, bool text) : target_(replace_file::FinalPath(target)) {
  WriteProblem problem = replace_file::CheckTarget(target);
  if (problem == WriteProblem::kNone) file_ = replace_file::CreateBeside(target_, text, &temporary_, &problem);
  g_lastProblem = problem;
}

ReplacingFile::~ReplacingFile() {
  if (file_) std::fclose(file_);
  if (!temporary_.empty()) replace_file::Discard(temporary_);
}

bool ReplacingFile::Commit(const char* backup) {
  if (!file_) return false;
  std::FILE* file = file_;
  file_ = nullptr;
  if (!replace_file::FlushAndClose(file) || !replace_file::Replace(temporary_, target_, backup)) {
    g_lastProblem = WriteProblem::kWriteFailed;
    return false;
  }
  temporary_.clear();  // it is the target now
  g_lastProblem = WriteProblem::kNone;
  return true;
}
