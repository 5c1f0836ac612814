#include "host/module_description.h"

#include "hostif/orv_typebase.h"

namespace tarnwell::host {
namespace {

// Upper bound on the jacks listed: the counts come from the plug-in and must not size a loop of
// ours unchecked.
constexpr int kMaxJacks = 64;
constexpr int kHeaderVersion = 1;

// Opens the protected layout of the base class to the check below; never constructed.
class LayoutView : public Orv_TypeBase {
 public:
  static bool describes(const AEffect& record) {
    auto* view = static_cast<LayoutView*>(static_cast<Orv_TypeBase*>(record.object));
    if (view == nullptr || &view->cEffect != &record) return false;
    return view->numPrograms == record.numPrograms && view->numParams == record.numParams &&
           view->headerVersion == kHeaderVersion;
  }
};

std::vector<JackDescription> jacks(int count, auto&& signals, auto&& first) {
  std::vector<JackDescription> out;
  for (int jack = 0; jack < count && jack < kMaxJacks; ++jack) {
    out.push_back({signals(jack), first(jack)});
  }
  return out;
}

}  // namespace

std::optional<ModuleDescription> describeModule(const PluginInstance& instance) {
  const AEffect& record = instance.record();
  if (!LayoutView::describes(record)) return std::nullopt;
  auto* module = static_cast<Orv_TypeBase*>(record.object);
  return ModuleDescription{
      jacks(
          module->getNumOfInJacks(), [&](int j) { return module->getNumOfInSig(j); },
          [&](int j) { return module->getStartNumInSig(j); }),
      jacks(
          module->getNumOfOutJacks(), [&](int j) { return module->getNumOfOutSig(j); },
          [&](int j) { return module->getStartNumOutSig(j); }),
      module->getDryInSigNum(),
      module->getHeaderVersion(),
  };
}

}  // namespace tarnwell::host
