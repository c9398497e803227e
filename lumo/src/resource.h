#pragma once

#include <memory>
#include <tuple>
#include <vector>

namespace lumo {

/// Base of an object that is known by a key and made of components.
template <class Key, class... Components>
class Resource {
 public:
  explicit Resource(Key key) : key_(std::move(key)) {}
  virtual ~Resource() = default;

  Resource(const Resource&) = delete;
  Resource& operator=(const Resource&) = delete;

  virtual const Key& getKey() const { return key_; }

  template <class Component>
  const std::vector<std::shared_ptr<Component>>& getComponents() const {
    return std::get<std::vector<std::shared_ptr<Component>>>(components_);
  }

 protected:
  template <class Component>
  void addComponent(std::shared_ptr<Component> component) {
    std::get<std::vector<std::shared_ptr<Component>>>(components_).push_back(std::move(component));
  }

 private:
  Key key_;
  std::tuple<std::vector<std::shared_ptr<Components>>...> components_;
};

}  // namespace lumo
