#include "event_queue.h"

#include <utility>

namespace tolk {

std::shared_ptr<EventQueue>& globalEventQueue() {
  static std::shared_ptr<EventQueue> queue;
  return queue;
}

void postEvent(std::shared_ptr<EventBase> event) {
  if (const auto& queue = globalEventQueue()) queue->push(std::move(event));
}

}  // namespace tolk
