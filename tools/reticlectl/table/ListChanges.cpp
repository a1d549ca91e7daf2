#include "tools/reticlectl/table/ListChanges.h"

#include <algorithm>
#include <tuple>

namespace reticlectl {

namespace {

using Reticles = std::vector<reticle::Reticle>;

constexpr char NEW = '+';
constexpr char CHANGED = '~';
constexpr char SAME = ' ';

Reticles::const_iterator findIn(const Reticles& list, const reticle::Reticle& wanted) {
    return std::find_if(list.begin(), list.end(), [&wanted](const reticle::Reticle& reticle) {
        return reticle.index == wanted.index;
    });
}

auto content(const reticle::Reticle& reticle) {
    return std::tie(reticle.name, reticle.data, reticle.isDeletable, reticle.isActive);
}

char markOf(const Reticles& before, const reticle::Reticle& reticle) {
    if (!reticle.index) {
        return SAME;
    }
    const auto found = findIn(before, reticle);
    if (found == before.end()) {
        return NEW;
    }
    return content(*found) == content(reticle) ? SAME : CHANGED;
}

std::string goneFrom(const Reticles& before, const Reticles& after) {
    std::string gone;
    for (const reticle::Reticle& reticle : before) {
        if (reticle.index && findIn(after, reticle) == after.end()) {
            gone += (gone.empty() ? "gone: " : ", ") + std::to_string(*reticle.index);
        }
    }
    return gone;
}

}  // namespace

ListChanges ListChanges::between(const Reticles& before, const Reticles& after) {
    ListChanges changes;
    for (const reticle::Reticle& reticle : after) {
        changes.marks.push_back(markOf(before, reticle));
    }
    const auto add = [&changes](const std::string& part) {
        changes.summary += (changes.summary.empty() || part.empty() ? "" : ", ") + part;
    };
    const auto has = [&changes](char mark) {
        return std::find(changes.marks.begin(), changes.marks.end(), mark) != changes.marks.end();
    };
    add(has(NEW) ? "+ new" : "");
    add(has(CHANGED) ? "~ changed" : "");
    add(goneFrom(before, after));
    return changes;
}

}  // namespace reticlectl
