// Fuzz target: any type, size and data as the registry's answers to reads and to an enumeration.
#include <algorithm>
#include <string>

#include "core/runtime_error.h"
#include "platform/native/registry_service.h"
#include "support/registry_data.h"
#include "tests/fuzz/target.h"

namespace {

using namespace vex;

/// The only errors that conversions raise.
void require_known(const RuntimeError& error) {
    require(error.number() == kSubscriptOutOfRange || error.number() == kInvalidProcedureCall);
}

/// One answer: a byte for the type, two for the size that is reported, two for the buffer's length, and the
/// buffer's content.
RegistryData take_answer(const std::uint8_t*& data, std::size_t& rest) {
    const auto take_byte = [&]() -> std::uint32_t {
        if (rest == 0) return 0;
        --rest;
        return *data++;
    };
    RegistryData answer;
    answer.type = take_byte() % 12;
    answer.size = take_byte();
    answer.size |= take_byte() << 8;
    std::size_t length = take_byte();
    length |= take_byte() << 8;
    length = std::min(length, rest);
    answer.buffer.assign(data, data + length);
    data += length;
    rest -= length;
    return answer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static platform::Registry& registry = *platform::native::make_registry().release();
    EnumeratedValues enumeration(registry);
    while (size > 0) {
        const RegistryData answer = take_answer(data, size);
        for (const EmptyExpandable rule : {EmptyExpandable::empty_text, EmptyExpandable::one_null}) {
            try {
                const AutomationValue value = decode_value(answer, AutomationValue(u"initial"), rule, registry);
                require(!value.is_empty());
                require(!value.is_bytes() || value.bytes().size() <= answer.buffer.size());
            } catch (const RuntimeError& error) {
                require_known(error);
            }
        }
        try {
            require(!enumeration.next(answer).is_bytes());
        } catch (const RuntimeError& error) {
            require_known(error);
        }
    }
    return 0;
}
