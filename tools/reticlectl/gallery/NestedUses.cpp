#include "tools/reticlectl/gallery/NestedUses.h"

#include <algorithm>
#include <pugixml.hpp>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace reticlectl {

namespace {

std::string_view withoutPrefix(std::string_view name) {
    return name.substr(name.find(':') + 1);
}

/// What the uses of a document repeat, and what holds a use.
class UseWalker : public pugi::xml_tree_walker {
public:
    bool for_each(pugi::xml_node& node) override {
        if (withoutPrefix(node.name()) == "use") {
            for (const pugi::xml_attribute& attribute : node.attributes()) {
                if (withoutPrefix(attribute.name()) == "href") {
                    _repeated.emplace_back(attribute.value());
                }
            }
            markHolders(node);
        }
        return true;
    }

    [[nodiscard]] bool hasNested() const {
        return std::any_of(_repeated.begin(), _repeated.end(),
                           [this](const std::string& link) { return _holders.contains(link); });
    }

private:
    void markHolders(pugi::xml_node node) {
        for (; !node.empty() && _seen.insert(node.hash_value()).second; node = node.parent()) {
            if (const pugi::xml_attribute id = node.attribute("id"); !id.empty()) {
                _holders.insert(std::string("#") + id.value());
            }
        }
    }

    std::vector<std::string> _repeated;
    std::unordered_set<std::string> _holders;
    std::unordered_set<std::size_t> _seen;  ///< with all their parents
};

}  // namespace

bool nestsUses(const std::string& svg) {
    if (svg.find("<!ENTITY") != std::string::npos) {
        return true;
    }
    pugi::xml_document document;
    if (!document.load_buffer(svg.data(), svg.size())) {
        return false;
    }
    UseWalker walker;
    document.traverse(walker);
    return walker.hasNested();
}

}  // namespace reticlectl
