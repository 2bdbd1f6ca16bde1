#ifndef QNCORVANE_HOST_WORKER_H
#define QNCORVANE_HOST_WORKER_H

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace Corvane::Host {

/// One thread that does what any thread asks of it, piece by piece, in the order of asking. No two workers of the process
/// are at work at the same time: what they do belongs to the one engine.
///
/// The thread takes no signals: those are for the host's own.
class Worker {
 public:
  using Work = std::function<void()>;

  /// How a wait ended.
  enum class Ended {
    kDone,
    kNotBegun,  ///< the time was over before it began; it never will
    kRunning,   ///< the time was over while it ran; it is carried through
    kStopped    ///< the worker had been stopped; it never begins
  };

  /// @throw std::system_error when there can be no thread.
  Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  /// What was asked for is carried through, and nobody waits for that.
  ~Worker();

  /// Has `work` done and waits for it.
  ///
  /// @param work  must let no exception out, and must own whatever it needs when there is a limit.
  /// @param limit 0 for none.
  Ended Do(Work work, std::chrono::milliseconds limit);

  /// Ends the thread when what was asked for before is done, and waits for that. What is asked for later never begins.
  ///
  /// @param last done behind all of it; may be null.
  void StopBehind(Work last);

 private:
  struct Queue;
  static void Serve(const std::shared_ptr<Queue>& queue);

  std::shared_ptr<Queue> m_queue;
  std::thread m_thread;
};

/// Holds all workers between two pieces of work, for as long as this object lives. Waits for the piece that runs.
class WorkersHeld {
 public:
  WorkersHeld() { Hold(); }
  WorkersHeld(const WorkersHeld&) = delete;
  WorkersHeld& operator=(const WorkersHeld&) = delete;
  ~WorkersHeld() { Release(); }

  /// The two ends by themselves, for holders that are no scope. @note Hold may be for ever.
  static void Hold();
  static void Release();
};

}  // namespace Corvane::Host

#endif
