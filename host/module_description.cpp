#include "host/module_description.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "hostif/orv_typebase.h"

namespace tarnwell::host {
namespace {

// Upper bound on the jacks listed: the counts come from the plug-in and must not size a loop of
// ours unchecked.
constexpr int kMaxJacks = 64;
constexpr int kHeaderVersion = 1;

// Offsets of the base class's protected fields, taken from data-member pointers: on this ABI
// such a pointer holds the field's offset in the class. Never instantiated.
class FieldOffsets : public Orv_TypeBase {
 public:
  static std::ptrdiff_t ofRecord() { return offset(&FieldOffsets::cEffect); }
  static std::ptrdiff_t ofPrograms() { return offset(&FieldOffsets::numPrograms); }
  static std::ptrdiff_t ofParams() { return offset(&FieldOffsets::numParams); }
  static std::ptrdiff_t ofHeaderVersion() { return offset(&FieldOffsets::headerVersion); }

 private:
  template <class Field, class Class>
  static std::ptrdiff_t offset(Field Class::*field) {
    static_assert(sizeof field == sizeof(std::ptrdiff_t));
    return std::bit_cast<std::ptrdiff_t>(field);
  }
};

VstInt32 int32At(std::uintptr_t address) {
  VstInt32 value;
  std::memcpy(&value, reinterpret_cast<const void*>(address), sizeof value);
  return value;
}

// Plain address arithmetic and byte reads: nothing is called on `object` until it passes.
bool isModuleOf(const AEffect& record) {
  const auto object = reinterpret_cast<std::uintptr_t>(record.object);
  if (object == 0 ||
      object + FieldOffsets::ofRecord() != reinterpret_cast<std::uintptr_t>(&record)) {
    return false;
  }
  return int32At(object + FieldOffsets::ofPrograms()) == record.numPrograms &&
         int32At(object + FieldOffsets::ofParams()) == record.numParams &&
         int32At(object + FieldOffsets::ofHeaderVersion()) == kHeaderVersion;
}

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
  if (!isModuleOf(record)) return std::nullopt;
  // The record's `object` is the AudioEffect itself.
  auto* module = static_cast<Orv_TypeBase*>(static_cast<AudioEffect*>(record.object));
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
