#include "host/cli/pending_output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/cli/errors.h"
#include "host/cli/output_target.h"

namespace tarnwell::cli {
namespace {

// The signals that end a render from outside: Ctrl-C and Ctrl-\, a kill, a closed terminal, a
// CPU-time limit.
constexpr int kCleanupSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU};

// The path the signal handler removes; written only while no handler can run on it (disarmed).
std::array<char, 4096> pendingPath{};
volatile std::sig_atomic_t pendingArmed = 0;

extern "C" void removePendingAndDie(int signal) {
  if (pendingArmed != 0) unlink(pendingPath.data());
  // The handler was installed with SA_RESETHAND: raising again ends the program as the signal
  // would.
  raise(signal);
}

void installCleanupHandlers() {
  static const bool installed = [] {
    struct sigaction action {};
    action.sa_handler = removePendingAndDie;
    action.sa_flags = SA_RESETHAND;
    sigemptyset(&action.sa_mask);
    for (int s : kCleanupSignals) {
      // A signal ignored when the command started (nohup, a shell's background job) stays so.
      struct sigaction previous {};
      sigaction(s, nullptr, &previous);
      if (previous.sa_handler != SIG_IGN) sigaction(s, &action, nullptr);
    }
    return true;
  }();
  (void)installed;
}

// Holds the cleanup signals back while the temporary file and the handler's record of it change
// together, so an interrupt never falls between creating the file and arming its removal.
class CleanupSignalsHeld {
 public:
  CleanupSignalsHeld() {
    sigset_t held;
    sigemptyset(&held);
    for (int s : kCleanupSignals) sigaddset(&held, s);
    sigprocmask(SIG_BLOCK, &held, &previous_);
  }
  ~CleanupSignalsHeld() { sigprocmask(SIG_SETMASK, &previous_, nullptr); }
  CleanupSignalsHeld(const CleanupSignalsHeld&) = delete;
  CleanupSignalsHeld& operator=(const CleanupSignalsHeld&) = delete;

 private:
  sigset_t previous_;
};

void arm(const std::filesystem::path& path) {
  const std::string& text = path.native();
  if (text.size() >= pendingPath.size())
    return;  // too long to keep: cleaned up by the destructor only
  pendingArmed = 0;
  std::memcpy(pendingPath.data(), text.c_str(), text.size() + 1);
  pendingArmed = 1;
}

void disarm() {
  pendingArmed = 0;
}

mode_t creationMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// The replaced file's permission bits, and its owner and group as far as this user may set them.
void keepOwnerAndMode(int fd, const struct stat& replaced) {
  if (fchown(fd, replaced.st_uid, replaced.st_gid) != 0 &&
      fchown(fd, static_cast<uid_t>(-1), replaced.st_gid) != 0) {
    // Neither: the new file keeps this user's owner and group.
  }
  fchmod(fd, replaced.st_mode & 07777);  // after fchown, which may clear set-id bits
}

std::string systemError(int error) {
  return std::strerror(error);
}

// Moves `from` to `to` unless `to` exists, atomically; errno tells why not. A file system without
// the no-replace rename gets the same promise from a hard link.
bool renameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  if (link(from.c_str(), to.c_str()) != 0) return false;
  unlink(from.c_str());
  return true;
}

}  // namespace

PendingOutput::PendingOutput(const std::filesystem::path& target, bool overwrite)
    : overwrite_(overwrite) {
  const OutputTarget checked = checkOutputTarget(target, overwrite);
  target_ = checked.path;
  std::string pattern = temporaryPattern(target_);

  installCleanupHandlers();
  const CleanupSignalsHeld held;
  fd_ = mkstemp(pattern.data());
  if (fd_ < 0) {
    throw RunError("cannot write " + target.string() + ": " + systemError(errno));
  }
  temporary_ = pattern;
  arm(temporary_);
  if (checked.replaced) {
    keepOwnerAndMode(fd_, *checked.replaced);
  } else {
    fchmod(fd_, creationMode());
  }
}

void PendingOutput::write(const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      discard();
      throw RunError("cannot write " + target_.string() + ": " + systemError(error));
    }
    done += static_cast<std::size_t>(n);
  }
}

PendingOutput::~PendingOutput() {
  discard();
}

void PendingOutput::discard() noexcept {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
  if (!temporary_.empty()) {
    const CleanupSignalsHeld held;
    disarm();
    unlink(temporary_.c_str());
    temporary_.clear();
  }
}

void PendingOutput::commit() {
  const auto fail = [&](int error) {
    discard();
    return RunError("cannot write " + target_.string() + ": " + systemError(error));
  };
  if (fsync(fd_) != 0) throw fail(errno);
  const int fd = fd_;
  fd_ = -1;
  if (close(fd) != 0) throw fail(errno);

  if (overwrite_) {
    if (rename(temporary_.c_str(), target_.c_str()) != 0) throw fail(errno);
  } else if (!renameWithoutReplacing(temporary_, target_)) {
    if (errno == EEXIST) {
      discard();
      throw RunError(target_.string() + " appeared while rendering; left it as it is");
    }
    throw fail(errno);
  }
  disarm();
  temporary_.clear();
}

}  // namespace tarnwell::cli
