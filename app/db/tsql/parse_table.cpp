#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {
namespace {

void identity(TokenReader& in, ColumnClause& column) {
    in.take();
    column.identity = true;
    if (!in.acceptSymbol("("))
        return;
    column.seed = in.wholeNumber();
    in.expectSymbol(",");
    column.increment = in.wholeNumber();
    in.expectSymbol(")");
}

void keyConstraint(TokenReader& in, ConstraintClause& constraint) {
    constraint.kind = ConstraintClause::Kind::Unique;
    if (in.take().is("PRIMARY")) {
        in.expectWord("KEY");
        constraint.kind = ConstraintClause::Kind::PrimaryKey;
    }
    if (in.acceptWord("CLUSTERED"))
        constraint.clustered = true;
    else
        in.acceptWord("NONCLUSTERED");
    if (in.isSymbol("("))
        constraint.columns = parseIndexColumns(in);
    skipIndexOptions(in);
    skipStorageOptions(in);
}

void foreignKey(TokenReader& in, ConstraintClause& constraint) {
    constraint.kind = ConstraintClause::Kind::ForeignKey;
    ForeignKeyClause& key = constraint.foreignKey;
    if (in.acceptWord("FOREIGN")) {
        in.expectWord("KEY");
        if (in.isSymbol("("))
            key.columns = in.nameList();
    }
    in.expectWord("REFERENCES");
    key.table = in.objectName();
    if (in.isSymbol("("))
        key.refColumns = in.nameList();
    while (in.isWord("ON") && (in.isWord("DELETE", 1) || in.isWord("UPDATE", 1))) {
        in.take();
        std::string& action = in.take().is("DELETE") ? key.onDelete : key.onUpdate;
        if (in.acceptWord("CASCADE")) {
            action = "CASCADE";
        } else if (in.acceptWord("NO")) {
            in.expectWord("ACTION");
            action = "NO ACTION";
        } else {
            in.expectWord("SET");
            action = in.isWord("NULL") ? "SET NULL" : "SET DEFAULT";
            if (!in.acceptWord("NULL"))
                in.expectWord("DEFAULT");
        }
    }
    if (in.isWord("NOT") && in.isWord("FOR", 1)) {
        in.take();
        in.take();
        in.expectWord("REPLICATION");
    }
}

std::optional<ConstraintClause> constraint(TokenReader& in, bool ofColumn) {
    ConstraintClause clause;
    clause.line = in.peek().line;
    const bool named = in.isWord("CONSTRAINT");
    if (named) {
        in.take();
        clause.name = in.name();
    }
    if (in.isWord("PRIMARY") || in.isWord("UNIQUE")) {
        keyConstraint(in, clause);
    } else if (in.isWord("CHECK")) {
        in.take();
        if (in.isWord("NOT")) {
            in.take();
            in.expectWord("FOR");
            in.expectWord("REPLICATION");
        }
        clause.kind = ConstraintClause::Kind::Check;
        in.expectSymbol("(");
        clause.expr = parseSourced(in, [&] { return parseCondition(in); });
        in.expectSymbol(")");
    } else if (in.isWord("DEFAULT")) {
        in.take();
        clause.kind = ConstraintClause::Kind::Default;
        clause.expr = parseSourced(in, [&] { return parseValue(in); });
        if (!ofColumn) {
            in.expectWord("FOR");
            clause.forColumn = in.name();
        } else if (in.isWord("WITH") && in.isWord("VALUES", 1)) {
            in.take();
            in.take();
        }
    } else if (in.isWord("FOREIGN") || (ofColumn && in.isWord("REFERENCES"))) {
        foreignKey(in, clause);
    } else if (named) {
        in.unexpected();
    } else {
        return std::nullopt;
    }
    return clause;
}

bool columnOption(TokenReader& in, ColumnClause& column) {
    if (in.isWord("NOT") && in.isWord("NULL", 1)) {
        in.take();
        in.take();
        column.nullable = false;
        return true;
    }
    if (in.isWord("NOT") && in.isWord("FOR", 1)) { // NOT FOR REPLICATION
        in.take();
        in.take();
        in.expectWord("REPLICATION");
        return true;
    }
    if (in.acceptWord("NULL")) {
        column.nullable = true;
        return true;
    }
    if (in.isWord("IDENTITY")) {
        identity(in, column);
        return true;
    }
    if (in.acceptWord("COLLATE")) {
        column.collation = in.name();
        return true;
    }
    if (in.acceptWord("ROWGUIDCOL") || in.acceptWord("SPARSE"))
        return true;
    if (std::optional<ConstraintClause> clause = constraint(in, true)) {
        column.constraints.push_back(std::move(*clause));
        return true;
    }
    return false;
}

ColumnClause columnClause(TokenReader& in) {
    ColumnClause column;
    column.line = in.peek().line;
    column.name = in.name();
    if (in.acceptWord("AS")) {
        column.computed = parseSourced(in, [&] { return parseValue(in); });
        column.persisted = in.acceptWord("PERSISTED");
    } else if (sameName(column.name, "timestamp") && (in.isSymbol(",") || in.isSymbol(")"))) {
        column.type.name = "timestamp";
    } else {
        column.type = in.typeName();
    }
    while (columnOption(in, column)) {
    }
    return column;
}

void tableElement(TokenReader& in, TableBody& body) {
    if (std::optional<ConstraintClause> clause = constraint(in, false))
        body.constraints.push_back(std::move(*clause));
    else
        body.columns.push_back(columnClause(in));
}

void alterTableAction(TokenReader& in, AlterTableStatement& alter) {
    using Action = AlterTableStatement::Action;
    if (in.acceptWord("ADD")) {
        do {
            tableElement(in, alter.body);
        } while (in.acceptSymbol(","));
    } else if (in.acceptWord("ALTER")) {
        in.expectWord("COLUMN");
        alter.action = Action::AlterColumn;
        alter.body.columns.push_back(columnClause(in));
    } else if (in.acceptWord("DROP")) {
        alter.action = Action::DropConstraints;
        if (in.acceptWord("COLUMN"))
            alter.action = Action::DropColumns;
        else
            in.acceptWord("CONSTRAINT");
        do {
            in.acceptWord(alter.action == Action::DropColumns ? "COLUMN" : "CONSTRAINT");
            alter.names.push_back(in.name());
        } while (in.acceptSymbol(","));
    } else if (in.isWord("CHECK") || in.isWord("NOCHECK")) {
        alter.action = Action::CheckConstraint;
        alter.enable = in.take().is("CHECK");
        in.expectWord("CONSTRAINT");
        do {
            alter.names.push_back(in.isWord("ALL") ? in.take().value() : in.name());
        } while (in.acceptSymbol(","));
    } else if (in.isWord("ENABLE") || in.isWord("DISABLE")) {
        alter.action = Action::Trigger;
        alter.enable = in.take().is("ENABLE");
        in.expectWord("TRIGGER");
        do {
            alter.names.push_back(in.isWord("ALL") ? in.take().value() : in.name());
        } while (in.acceptSymbol(","));
    } else {
        in.unexpected();
    }
}

} // namespace

StatementPtr parseCreateTable(TokenReader& in) {
    auto statement = begun<CreateTableStatement>(in);
    in.take();
    statement->table = in.objectName();
    statement->body = parseTableBody(in);
    skipStorageOptions(in);
    return statement;
}

void skipStorageOptions(TokenReader& in) {
    while (in.isWord("ON") || in.isWord("TEXTIMAGE_ON")) {
        in.take();
        if (in.isWord("PRIMARY"))
            in.take();
        else
            in.name();
    }
}

TableBody parseTableBody(TokenReader& in) {
    TableBody body;
    in.expectSymbol("(");
    do {
        if (in.isSymbol(")") && !body.columns.empty()) // a comma before the closing parenthesis is taken
            break;
        tableElement(in, body);
    } while (in.acceptSymbol(","));
    in.expectSymbol(")");
    return body;
}

StatementPtr parseAlterTable(TokenReader& in) {
    auto statement = begun<AlterTableStatement>(in);
    in.take();
    statement->table = in.objectName();
    if (in.isWord("WITH")) {
        in.take();
        statement->noCheck = in.isWord("NOCHECK");
        if (!in.acceptWord("NOCHECK"))
            in.expectWord("CHECK");
    }
    alterTableAction(in, *statement);
    return statement;
}

StatementPtr parseCreateType(TokenReader& in) {
    auto statement = begun<CreateTypeStatement>(in);
    in.take();
    statement->name = in.objectName();
    if (in.acceptWord("AS"))
        return parseUnsupported(in, "CREATE TYPE AS TABLE");
    in.expectWord("FROM");
    statement->base = in.typeName();
    if (in.acceptWord("NULL")) {
        statement->nullable = true;
    } else if (in.acceptWord("NOT")) {
        in.expectWord("NULL");
        statement->nullable = false;
    }
    return statement;
}

} // namespace merchantry::db::tsql
