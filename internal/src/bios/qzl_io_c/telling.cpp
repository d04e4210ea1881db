// SPDX-License-Identifier: BSL-1.0
#include "telling.h"

#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include <qzl_base/error.h>

#include "structures.h"

namespace xC {

void eTelling::Clear() noexcept {
    Take(QZL_OK);
}

qzl_status eTelling::Take(qzl_status itsStatus) noexcept {
    status = itsStatus;
    plain = true;
    placed = false;
    return status;
}

qzl_status eTelling::Take(qzl_status itsStatus, const std::string& message) {
    Take(itsStatus);
    parts = xError::eDiagnostic();
    rendered.clear();
    parts.message = message;
    plain = false;
    return status;
}

qzl_status eTelling::Take(qzl_status itsStatus, xError::eDiagnostic diagnostic, const std::string& source) {
    Take(itsStatus);
    if (diagnostic.excerpt.place.source.empty())
        diagnostic.excerpt.place.source = source;
    for (xError::eDiagnostic::eNote& note : diagnostic.notes)
        if (note.excerpt.place.source.empty())
            note.excerpt.place.source = source;
    parts = std::move(diagnostic);
    rendered = xError::Render(parts);
    plain = false;
    placed = true;
    return status;
}

qzl_status eTelling::TakeException(const std::string& source) noexcept {
    try {
        return TakeKnownException(source);
    } catch (const std::bad_alloc&) {
        return Take(QZL_NO_MEMORY);
    } catch (const std::length_error&) { // a text that no memory could hold
        return Take(QZL_NO_MEMORY);
    } catch (...) {
        return Take(QZL_INTERNAL);
    }
}

qzl_status eTelling::TakeKnownException(const std::string& source) {
    try {
        throw;
    } catch (const eRefusal& refusal) {
        return Take(refusal.status, refusal.message);
    } catch (const xError::eException& exception) {
        const xError::eReport& report = exception.Report();
        const qzl_status told = StatusOf(report.message, QZL_MISTAKE);
        return report.diagnostic ? Take(told, *report.diagnostic, source) : Take(told, report.message);
    }
}

qzl_status eTelling::Tell(qzl_mistake* target) const noexcept {
    qzl_mistake told{};
    told.status = status;
    told.source = told.message = told.expected = told.found = told.suggestion = told.rendered = "";
    if (plain) {
        told.message = status == QZL_OK ? "" : qzl_status_text(status);
        return Fill(target, told);
    }
    told.message = parts.message.c_str();
    if (!placed)
        return Fill(target, told);
    const xError::ePlace& place = parts.excerpt.place;
    told.is_warning = parts.severity == xError::eDiagnostic::eSeverity::Warning;
    told.offset = place.offset;
    told.line = static_cast<uint32_t>(place.line);
    told.column = static_cast<uint32_t>(place.column);
    told.source = place.source.c_str();
    told.expected = parts.expected.c_str();
    told.found = parts.found.c_str();
    told.suggestion = parts.suggestion.c_str();
    told.rendered = rendered.c_str();
    return Fill(target, told);
}

qzl_status StatusOf(const std::string& message, qzl_status other) {
    if (message.ends_with("limit exceeded!"))
        return QZL_LIMIT;
    return message.ends_with("read error!") ? static_cast<qzl_status>(QZL_FILE) : other;
}

} // namespace xC
