// Calls by dispatch id as a host without type information makes them.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "com/bstr.h"
#include "com/com_ptr.h"
#include "com/variant.h"

namespace vex::plugin_test {

struct Outcome {
    HRESULT result = E_UNEXPECTED;
    com::Variant value;
    /// Of an exception.
    HRESULT code = S_OK;
    std::u16string description;
    std::u16string source;
    /// The argument at fault, counted as in the argument array; 999 when none is told.
    UINT argument = 999;
};

struct NamedArgument {
    DISPID position;
    com::Variant value;
};

/// `positional` in the order in which a programmer writes them.
inline Outcome call(IDispatch& object, DISPID member, WORD flags, const std::vector<com::Variant>& positional = {},
                    const std::vector<NamedArgument>& named = {}) {
    // Borrowed copies: named arguments first, then the others from the last to the first.
    std::vector<VARIANTARG> arguments;
    std::vector<DISPID> names;
    for (const NamedArgument& argument : named) {
        arguments.push_back(argument.value.get());
        names.push_back(argument.position);
    }
    for (auto argument = positional.rbegin(); argument != positional.rend(); ++argument) {
        arguments.push_back(argument->get());
    }
    DISPPARAMS parameters{};
    parameters.rgvarg = arguments.data();
    parameters.rgdispidNamedArgs = names.data();
    parameters.cArgs = static_cast<UINT>(arguments.size());
    parameters.cNamedArgs = static_cast<UINT>(names.size());

    Outcome outcome;
    EXCEPINFO exception{};
    outcome.result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, outcome.value.put(),
                                   &exception, &outcome.argument);
    com::Bstr description;
    com::Bstr source;
    com::Bstr help_file;
    *description.put() = exception.bstrDescription;
    *source.put() = exception.bstrSource;
    *help_file.put() = exception.bstrHelpFile;
    outcome.code = exception.scode;
    outcome.description = description.str();
    outcome.source = source.str();
    return outcome;
}

/// The id of a name, or -1.
inline DISPID id_of(IDispatch& object, std::u16string name) {
    auto* text = reinterpret_cast<LPOLESTR>(name.data());
    DISPID id = DISPID_UNKNOWN;
    object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

/// The error code that carries a run-time error's number.
constexpr HRESULT error_code(int number) { return static_cast<HRESULT>(0x800A0000U | static_cast<unsigned>(number)); }

}  // namespace vex::plugin_test
