#include "host/Worker.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace Corvane::Host {

namespace {

/// Held while a piece of work runs. Nothing ever destroys it: workers outlive the statics of the library.
std::mutex g_working;

enum class State { kWaiting, kRunning, kDone };

struct Piece {
  Worker::Work What;
  State Stands = State::kWaiting;
};

/// Blocks every signal on this thread, and so on those that it makes, for the life of this object.
class WithoutSignals {
 public:
  WithoutSignals() {
    sigset_t all{};
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  WithoutSignals(const WithoutSignals&) = delete;
  WithoutSignals& operator=(const WithoutSignals&) = delete;
  ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

 private:
  sigset_t m_before{};
};

}  // namespace

/// What asking and working threads share. It lives until the last of them has let go.
struct Worker::Queue {
  std::mutex Lock;
  std::condition_variable Changed;
  std::deque<std::shared_ptr<Piece>> Pieces;
  bool IsEnding = false;
};

Worker::Worker() : m_queue(std::make_shared<Queue>()) {
  const WithoutSignals held;
  m_thread = std::thread([queue = m_queue] { Serve(queue); });
}

Worker::~Worker() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(m_queue->Lock);
    m_queue->IsEnding = true;
  }
  m_queue->Changed.notify_all();
  m_thread.detach();
}

void Worker::StopBehind(Work last) {
  const auto piece = std::make_shared<Piece>();
  piece->What = std::move(last);
  {
    const std::lock_guard<std::mutex> lock(m_queue->Lock);
    if (piece->What) m_queue->Pieces.push_back(piece);
    m_queue->IsEnding = true;
  }
  m_queue->Changed.notify_all();
  m_thread.join();
}

Worker::Ended Worker::Do(Work work, std::chrono::milliseconds limit) {
  const auto piece = std::make_shared<Piece>();
  piece->What = std::move(work);
  std::unique_lock<std::mutex> lock(m_queue->Lock);
  if (m_queue->IsEnding) return Ended::kStopped;
  m_queue->Pieces.push_back(piece);
  m_queue->Changed.notify_all();
  const auto isDone = [&] { return piece->Stands == State::kDone; };
  if (limit.count() == 0) {
    m_queue->Changed.wait(lock, isDone);
    return Ended::kDone;
  }
  if (m_queue->Changed.wait_for(lock, limit, isDone)) return Ended::kDone;
  if (piece->Stands == State::kRunning) return Ended::kRunning;
  auto& pieces = m_queue->Pieces;
  pieces.erase(std::find(pieces.begin(), pieces.end(), piece));
  return Ended::kNotBegun;
}

void Worker::Serve(const std::shared_ptr<Queue>& queue) {
  std::unique_lock<std::mutex> lock(queue->Lock);
  for (;;) {
    queue->Changed.wait(lock, [&] { return queue->IsEnding || !queue->Pieces.empty(); });
    if (queue->Pieces.empty()) return;
    const std::shared_ptr<Piece> piece = queue->Pieces.front();
    lock.unlock();
    g_working.lock();
    lock.lock();
    // Its time may have been over while another worker was at work.
    const bool isWanted = !queue->Pieces.empty() && queue->Pieces.front() == piece;
    if (isWanted) {
      queue->Pieces.pop_front();
      piece->Stands = State::kRunning;
      lock.unlock();
      piece->What();
      piece->What = nullptr;
      lock.lock();
      piece->Stands = State::kDone;
      queue->Changed.notify_all();
    }
    g_working.unlock();
  }
}

void WorkersHeld::Hold() { g_working.lock(); }

void WorkersHeld::Release() { g_working.unlock(); }

}  // namespace Corvane::Host
