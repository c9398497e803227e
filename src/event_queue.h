#pragma once

#include <memory>

#include "events.h"
#include "rusk/block_queue.h"

namespace tolk {

using EventQueue = rusk::BlockQueue<std::shared_ptr<EventBase>>;

/// The controller's queue, for those who post events and never see the controller. Null before the
/// first controller is made; released at process exit.
std::shared_ptr<EventQueue>& globalEventQueue();

/// Puts an event on the global queue; without a queue the event is lost.
void postEvent(std::shared_ptr<EventBase> event);

}  // namespace tolk
