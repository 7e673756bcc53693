// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Fields.h>

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/documents/PaywallParameters.h>

#include <algorithm>
#include <vector>

namespace vorna::lint {

namespace {

template <class Record>
std::span<const DocumentField> withoutMembers() {
    static const std::vector<DocumentField> fields(Record::fields().begin(), Record::fields().end());
    return fields;
}

}  // namespace

std::span<const DocumentField> fieldsOf(RecordType type) {
    switch (type) {
    case RecordType::paywall:
        return withoutMembers<PaywallParameters>();
    case RecordType::step:
        return withoutMembers<OnboardingStepsParameters>();
    case RecordType::product:
        return withoutMembers<PaidProduct>();
    }
    return {};
}

const DocumentField* findField(RecordType type, std::string_view key) {
    const std::span<const DocumentField> fields = fieldsOf(type);
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [key](const DocumentField& field) { return field.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace vorna::lint
