// A GPU whose MPC mode can be switched: its nodes in all states of the mode, and what they answer there.
#ifndef MPC_PLAN_H
#define MPC_PLAN_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "device_builder.h"
#include "host.h"
#include "json_cursor.h"

class MpcPlan {
 public:
  /// `gpu` is the whole entry with all defaults, `common` the defaults alone; `where` names the entry.
  MpcPlan(const Device& sharedDevice, const nlohmann::json& gpu, const nlohmann::json& common,
          const JsonCursor& where, uint64_t copy);

  /// Makes the nodes that are there now.
  void begin(Host& host, NumberPool& pool);

  /// Makes those of the other states, behind all nodes of the host, and says what each is in each state.
  void finish(Host& host, NumberPool& pool);

 private:
  struct Slot {
    NodeNumbers numbers;
    size_t node = 0;
  };

  JsonCursor gpu() const { return {entry, file, path}; }
  JsonCursor mpc() const { return gpu().require("mpc"); }
  JsonCursor instanceEntry(const nlohmann::json& merged, size_t index) const;
  nlohmann::json mergedInstance(size_t index) const;
  /// Whether all profiles of the configuration are there; else it cannot be set.
  bool canBeSet(uint32_t state) const;
  /// One profile id for each instance in that state.
  std::vector<uint32_t> profilesIn(uint32_t state) const;
  bool describesInstances(uint32_t state) const { return state == current && mpc().find("instances"); }

  void addSlot(Host& host, NumberPool& pool, const JsonCursor& from, bool present);
  CellMap ownCells(const char* moreValues) const;
  void addParentFace(Host& host, uint32_t state) const;
  void addInstanceFaces(Host& host, uint32_t state) const;

  Device device;
  nlohmann::json entry;
  nlohmann::json defaults;
  std::string file;
  std::string path;
  uint64_t copyNumber;
  uint32_t current;  // as SimGpu.mpcState
  NodeNumbers own;
  std::vector<Slot> slots;
};

#endif
