#pragma once

#include <functional>

/// Queues of work. The main queue is the event loop of the thread that called `initialize`; the
/// global queue is a pool of threads. All work moves between threads through these functions.
namespace dispatch {

using Work = std::function<void()>;

enum class Priority { Default, High };

/// Binds the main queue to the calling thread. Called once, after the application object exists.
void initialize();

/// Waits for the work of the global queue that has begun, drops what has not, and unbinds the main
/// queue: work that is sent to it later is dropped. Called on the main thread before the
/// application object ends.
void finish();

bool isMainThread();

/// Runs `work` on the main thread, later, in the order of the calls.
void mainAsync(Work work);

/// Runs `work` on the main thread and returns when it has ended. On the main thread it runs at
/// once. Returns without running it when the main queue has ended.
void mainSync(const Work& work);

/// Runs `work` on a pool thread; work of high priority is taken first.
void globalAsync(Priority priority, Work work);

}  // namespace dispatch
