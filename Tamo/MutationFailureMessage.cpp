#include "MutationFailureMessage.h"

namespace {

struct Wording {
    QString operator()(const MutationPlanner::InvalidName& failure) const {
        return QStringLiteral("“%1” no es un nombre XML válido.")
            .arg(QString::fromStdU16String(failure.name));
    }
    QString operator()(const MutationPlanner::DuplicateAttribute& failure) const {
        return QStringLiteral("Ya existe un atributo “%1”.").arg(QString::fromStdU16String(failure.name));
    }
    QString operator()(const MutationPlanner::NodeNotFound&) const {
        return QStringLiteral("El nodo ya no existe.");
    }
    QString operator()(const MutationPlanner::NotAnElement&) const {
        return QStringLiteral("La operación solo aplica a elementos.");
    }
    QString operator()(const MutationPlanner::InvalidTarget&) const {
        return QStringLiteral("No se puede hacer esa operación en ese lugar.");
    }
};

} // namespace

QString message(const MutationPlanner::Failure& failure) { return std::visit(Wording(), failure); }
