// TComponent: an object that may have an owner. An owner frees the
// components it owns when it goes; a component leaves its owner's list when
// it goes first.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include <kestrel/frame/host/TObject.h>

namespace kestrel {

// Make one with an owner to have the owner free it; with null, free it yourself.
class TComponent : public TPersistent {
public:
  explicit TComponent(TComponent *owner) : FOwner(owner) {
    if (owner) owner->FComponents.push_back(this);
  }
  ~TComponent() override {
    while (!FComponents.empty()) {
      TComponent *c = FComponents.back();
      FComponents.pop_back();
      c->FOwner = nullptr;
      delete c;
    }
    if (FOwner) {
      auto &list = FOwner->FComponents;
      list.erase(std::remove(list.begin(), list.end(), this), list.end());
    }
  }
  TComponent *Owner() const { return FOwner; }
  int32_t ComponentCount() const { return static_cast<int32_t>(FComponents.size()); }
  TComponent *Components(int32_t index) const { return FComponents.at(static_cast<size_t>(index)); }

private:
  TComponent *FOwner;
  std::vector<TComponent *> FComponents;
};

} // namespace kestrel
