#include "support/fake_platform.h"

#include <algorithm>
#include <stdexcept>

#include "pci_topology.h"

namespace tolk_test {
namespace {

FakePlatform* current = nullptr;

class FakeAccessPoint : public kelp::AccessPointBase {
 public:
  explicit FakeAccessPoint(const kelp::DevCuid& cuid) : cuid_(cuid) {}

  const kelp::DevCuid& getCuid() const override { return cuid_; }
  const kelp::Stated<kelp::DevDesc>& getDevDesc() const override { return desc_; }
  kelp::Done init() override {
    FakePlatform& platform = FakePlatform::instance();
    ++platform.modelInits;
    const auto own = platform.descOf.find(cuid_.intId);
    const kelp::Stated<kelp::DevDesc>& desc = own == platform.descOf.end() ? platform.desc : own->second;
    if (!desc.ok()) {
      return desc.state();
    }
    desc_ = desc;
    return kelp::KelpReturn::kSuccess;
  }

 private:
  kelp::DevCuid cuid_;
  kelp::Stated<kelp::DevDesc> desc_;
};

class FakeEnumerator : public kelp::ModelEnumeratorBase {
 public:
  using kelp::ModelEnumeratorBase::enumeratePcie;
  kelp::Stated<kelp::DevCuidSet> enumeratePcie() override { return FakePlatform::instance().pcieCuids; }
  kelp::Stated<kelp::DevCuidSet> enumerateMpci(const std::string&) override {
    return FakePlatform::instance().mpciCuids;
  }
  kelp::Stated<kelp::DevCuidSet> enumerateVirt(const std::string&) override {
    return FakePlatform::instance().virtCuids;
  }
};

class FakeEnvironment : public kelp::EnvironmentBase {
 public:
  kelp::Stated<std::string> getDriverVersion() override { return FakePlatform::instance().driverVersion; }
  kelp::Stated<kelp::DriverMode> getDriverMode() override { return kelp::DriverMode::kBareHost; }
  kelp::Stated<std::string> getProcessName(std::uint32_t pid) override {
    FakePlatform::instance().pid = pid;
    return FakePlatform::instance().processName;
  }
  kelp::Stated<kelp::EnvironmentType> getEnvironmentType() override { return kelp::EnvironmentType::kHost; }
  kelp::Stated<kelp::GpuEnvType> getGpuEnvironmentType() override { return kelp::GpuEnvType::kComplete; }
};

}  // namespace

FakePlatform::FakePlatform() {
  if (current != nullptr) {
    throw std::logic_error("one platform at a time");
  }
  current = this;
}

FakePlatform::~FakePlatform() {
  current = nullptr;
}

FakePlatform& FakePlatform::instance() {
  return *current;
}

std::size_t FakePlatform::count(const std::string& command) const {
  return static_cast<std::size_t>(std::ranges::count(asked, command));
}

kelp::DevCuid makeCuid(kelp::DevType type, kelp::DevArch arch, std::uint64_t intId) {
  return {.type = type, .arch = arch, .sbdf = 0x410000, .intId = intId};
}

}  // namespace tolk_test

namespace kelp {

using tolk_test::FakePlatform;

CoreModel::CoreModel(const DevCuid& cuid, std::string knownUuid)
    : cuid_(cuid),
      knownUuid_(std::move(knownUuid)),
      accessPoint_(std::make_unique<tolk_test::FakeAccessPoint>(cuid)) {}

CoreModel::~CoreModel() = default;

ModelManager::ModelManager()
    : enumerator_(std::make_unique<tolk_test::FakeEnumerator>()),
      environment_(std::make_shared<tolk_test::FakeEnvironment>()) {}

ModelManager::~ModelManager() = default;

Stated<std::shared_ptr<CoreModel>> ModelManager::getModel(const DevCuid& cuid) {
  if (const auto found = models_.find(cuid); found != models_.end()) {
    return found->second;
  }
  const auto model = models_.emplace(cuid, std::make_shared<CoreModel>(cuid)).first->second;
  const Done done = model->init();
  if (!done.ok()) {
    return done.state();
  }
  return model;
}

void ModelManager::closeOtherModelFile(const DevCuid& target) {
  FakePlatform::instance().othersTouched.push_back("close " + std::to_string(target.intId));
}

void ModelManager::reinitOtherModelFile(const DevCuid& target) {
  FakePlatform::instance().othersTouched.push_back("reopen " + std::to_string(target.intId));
}

Stated<TopologyLevel> getPciDeviceTopology(std::string_view sbdfA, std::string_view sbdfB) {
  FakePlatform& platform = FakePlatform::instance();
  platform.topologyOf = {std::string(sbdfA), std::string(sbdfB)};
  return platform.topologyLevel;
}

Stated<std::vector<std::string>> getPciNicDevicesSbdf() {
  return FakePlatform::instance().nics;
}

#define COMMAND(name)                                                     \
  template <>                                                             \
  Stated<name##Cmd::Result> CoreModel::exec(const name##Cmd& cmd) const { \
    return FakePlatform::instance().run(#name, getCuid(), cmd);           \
  }

#define MISC_INTERFACE(number, name, ...) COMMAND(name)
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
#define RENDER_INTERFACE(number, name, ...) COMMAND(name)
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
COMMAND(QueryPcieInfo)
COMMAND(QueryEfuse)
COMMAND(QueryAffinityWithinNode)
COMMAND(QuerySupportedVirtTypes)
COMMAND(QueryAvailableVirtTypes)
COMMAND(QueryAvailableVirtInstances)
COMMAND(QueryActiveVirtUuids)
COMMAND(QueryVirtType)
COMMAND(QueryVgpuId)
COMMAND(QueryVmPid)

}  // namespace kelp
