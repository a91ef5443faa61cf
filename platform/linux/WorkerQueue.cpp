#include "platform/linux/WorkerQueue.h"

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/SignalsBlocked.h"

namespace tavlo::linux_platform {
namespace {

constexpr int kNice = 10;

using Threads = std::vector<std::thread>;

thread_local bool isWorker = false;

void join(Threads threads) {
  for (std::thread& thread : threads) {
    if (thread.get_id() == std::this_thread::get_id()) {
      thread.detach();
    } else {
      thread.join();
    }
  }
}

}  // namespace

// What a queue shares with its workers, which may outlive it.
class WorkerQueue::Crew : public std::enable_shared_from_this<Crew> {
 public:
  Crew(int limit, std::function<void()> cancel) : limit_(static_cast<std::size_t>(limit)), cancel_(std::move(cancel)) {
    workers_.reserve(limit_);
  }

  void add(std::function<void()> task);
  void stop();

  [[nodiscard]] bool hasWorkers() {
    const std::lock_guard lock(mutex_);
    return alive_ > 0;
  }

 private:
  using Tasks = std::deque<std::function<void()>>;

  bool hire();
  void work();

  const std::size_t limit_;
  std::once_flag enrolment_;

  std::mutex mutex_;
  std::condition_variable wake_;
  Tasks tasks_;
  Threads workers_;
  std::size_t alive_ = 0;
  std::size_t resting_ = 0;
  std::function<void()> cancel_;
  bool stopping_ = false;
  bool stopped_ = false;
  std::condition_variable stops_;
};

// All crews of the process. It is never destroyed: threads may ask for it while the process ends.
class WorkerQueue::Registry {
 public:
  static Registry& one() {
    static auto* const registry = new Registry;
    return *registry;
  }

  // False once the process exits. The first crew of all brings the exit handler.
  bool enrol(const std::shared_ptr<Crew>& crew) {
    const std::lock_guard lock(mutex_);
    if (closed_) return false;
    std::erase_if(crews_, [](const auto& each) { return each.expired(); });
    crews_.push_back(crew);
    if (process_ == 0) {
      process_ = ::getpid();
      static_cast<void>(std::atexit([] { one().close(); }));
    }
    return true;
  }

  // Keeps the threads of a crew that a worker has stopped, since a worker waits for none. Those of crews that have
  // ended meanwhile are let go.
  void adopt(std::shared_ptr<Crew> crew, Threads threads) {
    std::vector<Orphans> ended;
    {
      const std::lock_guard lock(mutex_);
      orphans_.push_back({std::move(crew), std::move(threads)});
      for (Orphans& each : std::exchange(orphans_, {})) {
        (each.crew->hasWorkers() ? orphans_ : ended).push_back(std::move(each));
      }
    }
    for (Orphans& each : ended) join(std::move(each.threads));
  }

  // In a child of fork() there are no workers, and a lock may be held for ever.
  [[nodiscard]] bool isOfAnotherProcess() const {
    const pid_t process = process_;
    return process != 0 && process != ::getpid();
  }

 private:
  struct Orphans {
    std::shared_ptr<Crew> crew;
    Threads threads;
  };

  void close() {
    if (isOfAnotherProcess()) return;
    std::vector<std::weak_ptr<Crew>> crews;
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      crews.swap(crews_);
    }
    for (const auto& each : crews) {
      if (const auto crew = each.lock()) crew->stop();
    }
    std::vector<Orphans> orphans;
    {
      const std::lock_guard lock(mutex_);
      orphans.swap(orphans_);
    }
    for (Orphans& each : orphans) join(std::move(each.threads));
  }

  std::atomic<pid_t> process_ = 0;
  std::mutex mutex_;
  bool closed_ = false;
  std::vector<std::weak_ptr<Crew>> crews_;
  std::vector<Orphans> orphans_;
};

void WorkerQueue::Crew::add(std::function<void()> task) {
  std::call_once(enrolment_, [this] {
    if (!Registry::one().enrol(shared_from_this())) stop();
  });
  const std::lock_guard lock(mutex_);  // a task that is dropped is destroyed after it is gone
  if (stopping_) return;
  const bool needsWorker = tasks_.size() >= resting_ && workers_.size() < limit_;
  if (needsWorker && !hire() && workers_.empty()) return;
  tasks_.push_back(std::move(task));
  wake_.notify_one();
}

// False: the task is left to the workers there are, if any. Only for want of memory, and of any, it throws.
bool WorkerQueue::Crew::hire() {
  const SignalsBlocked blocked;
  try {
    workers_.emplace_back([crew = shared_from_this()] { crew->work(); });
  } catch (const std::system_error&) {
    return false;
  } catch (const std::bad_alloc&) {
    if (workers_.empty()) throw;
    return false;
  }
  ++alive_;
  return true;
}

void WorkerQueue::Crew::work() {
  isWorker = true;
  static_cast<void>(::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice));
  std::unique_lock lock(mutex_);
  for (;;) {
    ++resting_;
    wake_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
    --resting_;
    if (stopping_) break;
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    try {
      task();
    } catch (...) {  // it ends the task; there is no one to tell
    }
    task = nullptr;  // what it holds goes while there is no lock
    lock.lock();
  }
  --alive_;
}

// What is dropped may hold the last reference to whatever called this, and stop it once more: it goes last.
void WorkerQueue::Crew::stop() {
  Tasks dropped;
  Threads workers;
  std::function<void()> cancel;
  {
    std::unique_lock lock(mutex_);
    if (std::exchange(stopping_, true)) {
      if (!isWorker) stops_.wait(lock, [this] { return stopped_; });
      return;
    }
    dropped.swap(tasks_);
    workers.swap(workers_);
    cancel.swap(cancel_);
  }
  wake_.notify_all();
  if (cancel) cancel();
  if (isWorker) {
    Registry::one().adopt(shared_from_this(), std::move(workers));
  } else {
    join(std::move(workers));
  }
  const std::lock_guard lock(mutex_);
  stopped_ = true;
  stops_.notify_all();
}

WorkerQueue::WorkerQueue(int workers, std::function<void()> cancel)
    : crew_(std::make_shared<Crew>(workers, std::move(cancel))) {}

WorkerQueue::~WorkerQueue() { stop(); }

void WorkerQueue::dispatchAsync(std::function<void()> task) {
  if (!task) return;
  const std::shared_ptr<Crew> crew = crew_;  // the task may be what ends the queue, before add() has returned
  crew->add(std::move(task));
}

void WorkerQueue::stop() {
  if (Registry::one().isOfAnotherProcess()) return;
  const std::shared_ptr<Crew> crew = crew_;
  crew->stop();
}

}  // namespace tavlo::linux_platform
