#include "MutationFailureMessage.h"

#include <gtest/gtest.h>

TEST(MutationFailureMessage, SaysWhatIsWrong) {
    struct Row {
        MutationPlanner::Failure failure;
        QString message;
    };
    for (const Row& row : {
             Row{MutationPlanner::InvalidName{u"1 x"}, "“1 x” no es un nombre XML válido."},
             Row{MutationPlanner::InvalidName{u"%1"}, "“%1” no es un nombre XML válido."},
             Row{MutationPlanner::DuplicateAttribute{u"id"}, "Ya existe un atributo “id”."},
             Row{MutationPlanner::NodeNotFound(), "El nodo ya no existe."},
             Row{MutationPlanner::NotAnElement(), "La operación solo aplica a elementos."},
             Row{MutationPlanner::InvalidTarget(), "No se puede hacer esa operación en ese lugar."},
         }) {
        EXPECT_EQ(message(row.failure), row.message);
    }
}
