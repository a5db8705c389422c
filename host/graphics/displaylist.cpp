#include "host/graphics/displaylist.h"

#include <algorithm>
#include <utility>

namespace tarn::host {

void Scene::set(Key entity, DisplayList list) {
  if (lists_.find(entity) == lists_.end()) order_.push_back(entity);
  lists_[entity] = std::move(list);
}

void Scene::remove(Key entity) {
  if (lists_.erase(entity) == 0) return;
  order_.erase(std::remove(order_.begin(), order_.end(), entity), order_.end());
}

void Scene::keepInOrder(const std::vector<Key>& entities) {
  std::map<Key, DisplayList> kept;
  order_.clear();
  for (const Key entity : entities) {
    const auto found = lists_.find(entity);
    if (found == lists_.end()) continue;
    kept[entity] = std::move(found->second);
    lists_.erase(found);
    order_.push_back(entity);
  }
  lists_ = std::move(kept);
}

void Scene::clear() {
  order_.clear();
  lists_.clear();
}

const DisplayList* Scene::find(Key entity) const {
  const auto found = lists_.find(entity);
  return found == lists_.end() ? nullptr : &found->second;
}

}  // namespace tarn::host
