// Work sent to another thread and not waited for.
#pragma once

#include <functional>

class QObject;

namespace tessaly {

// Runs the work on the application object's thread, at a later turn of its event loop, in the order of the
// calls. Any thread. Work that is still waiting when the application object goes is dropped.
void asyncOnMainQueue(std::function<void()> work);

// The same, but the work is dropped when the context has died by then. The context lives on the application
// object's thread and is alive during the call.
void asyncOnMainQueue(QObject *context, std::function<void()> work);

// Runs the work on a thread of the global pool. Any thread. The application's end waits for it.
void asyncOnGlobalQueue(std::function<void()> work);

} // namespace tessaly
