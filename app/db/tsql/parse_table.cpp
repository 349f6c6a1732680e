#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::createTable() {
    auto statement = begin<CreateTableStatement>();
    take();
    statement->table = objectName();
    statement->body = tableBody();
    storageOptions();
    return statement;
}

// ON filegroup, TEXTIMAGE_ON filegroup: read and of no effect.
void Parser::storageOptions() {
    while (isWord("ON") || isWord("TEXTIMAGE_ON")) {
        take();
        if (isWord("PRIMARY"))
            take();
        else
            name();
    }
}

TableBody Parser::tableBody() {
    TableBody body;
    expectSymbol("(");
    do {
        if (isSymbol(")") && !body.columns.empty()) // a comma before the closing parenthesis is taken
            break;
        tableElement(body);
    } while (acceptSymbol(","));
    expectSymbol(")");
    return body;
}

void Parser::tableElement(TableBody& body) {
    if (std::optional<ConstraintClause> clause = constraint(false))
        body.constraints.push_back(std::move(*clause));
    else
        body.columns.push_back(columnClause());
}

ColumnClause Parser::columnClause() {
    ColumnClause column;
    column.line = peek().line;
    column.name = name();
    if (acceptWord("AS")) {
        column.computed = sourced([&] { return value(); });
        column.persisted = acceptWord("PERSISTED");
    } else if (sameName(column.name, "timestamp") && (isSymbol(",") || isSymbol(")"))) {
        column.type.name = "timestamp";
    } else {
        column.type = typeName();
    }
    while (columnOption(column)) {
    }
    return column;
}

bool Parser::columnOption(ColumnClause& column) {
    if (isWord("NOT") && isWord("NULL", 1)) {
        take();
        take();
        column.nullable = false;
        return true;
    }
    if (isWord("NOT") && isWord("FOR", 1)) { // NOT FOR REPLICATION
        take();
        take();
        expectWord("REPLICATION");
        return true;
    }
    if (acceptWord("NULL")) {
        column.nullable = true;
        return true;
    }
    if (isWord("IDENTITY")) {
        identity(column);
        return true;
    }
    if (acceptWord("COLLATE")) {
        column.collation = name();
        return true;
    }
    if (acceptWord("ROWGUIDCOL") || acceptWord("SPARSE"))
        return true;
    if (std::optional<ConstraintClause> clause = constraint(true)) {
        column.constraints.push_back(std::move(*clause));
        return true;
    }
    return false;
}

void Parser::identity(ColumnClause& column) {
    take();
    column.identity = true;
    if (!acceptSymbol("("))
        return;
    column.seed = wholeNumber();
    expectSymbol(",");
    column.increment = wholeNumber();
    expectSymbol(")");
}

std::optional<ConstraintClause> Parser::constraint(bool ofColumn) {
    ConstraintClause clause;
    clause.line = peek().line;
    const bool named = isWord("CONSTRAINT");
    if (named) {
        take();
        clause.name = name();
    }
    if (isWord("PRIMARY") || isWord("UNIQUE")) {
        keyConstraint(clause);
    } else if (isWord("CHECK")) {
        take();
        if (isWord("NOT")) {
            take();
            expectWord("FOR");
            expectWord("REPLICATION");
        }
        clause.kind = ConstraintClause::Kind::Check;
        expectSymbol("(");
        clause.expr = sourced([&] { return condition(); });
        expectSymbol(")");
    } else if (isWord("DEFAULT")) {
        take();
        clause.kind = ConstraintClause::Kind::Default;
        clause.expr = sourced([&] { return value(); });
        if (!ofColumn) {
            expectWord("FOR");
            clause.forColumn = name();
        } else if (isWord("WITH") && isWord("VALUES", 1)) {
            take();
            take();
        }
    } else if (isWord("FOREIGN") || (ofColumn && isWord("REFERENCES"))) {
        foreignKey(clause);
    } else if (named) {
        unexpected();
    } else {
        return std::nullopt;
    }
    return clause;
}

void Parser::keyConstraint(ConstraintClause& constraint) {
    constraint.kind = ConstraintClause::Kind::Unique;
    if (take().is("PRIMARY")) {
        expectWord("KEY");
        constraint.kind = ConstraintClause::Kind::PrimaryKey;
    }
    if (acceptWord("CLUSTERED"))
        constraint.clustered = true;
    else
        acceptWord("NONCLUSTERED");
    if (isSymbol("("))
        constraint.columns = indexColumns();
    indexOptions();
    storageOptions();
}

void Parser::foreignKey(ConstraintClause& constraint) {
    constraint.kind = ConstraintClause::Kind::ForeignKey;
    ForeignKeyClause& key = constraint.foreignKey;
    if (acceptWord("FOREIGN")) {
        expectWord("KEY");
        if (isSymbol("("))
            key.columns = nameList();
    }
    expectWord("REFERENCES");
    key.table = objectName();
    if (isSymbol("("))
        key.refColumns = nameList();
    while (isWord("ON") && (isWord("DELETE", 1) || isWord("UPDATE", 1))) {
        take();
        std::string& action = take().is("DELETE") ? key.onDelete : key.onUpdate;
        if (acceptWord("CASCADE")) {
            action = "CASCADE";
        } else if (acceptWord("NO")) {
            expectWord("ACTION");
            action = "NO ACTION";
        } else {
            expectWord("SET");
            action = isWord("NULL") ? "SET NULL" : "SET DEFAULT";
            if (!acceptWord("NULL"))
                expectWord("DEFAULT");
        }
    }
    if (isWord("NOT") && isWord("FOR", 1)) {
        take();
        take();
        expectWord("REPLICATION");
    }
}

StatementPtr Parser::alterTable() {
    auto statement = begin<AlterTableStatement>();
    take();
    statement->table = objectName();
    if (isWord("WITH")) {
        take();
        statement->noCheck = isWord("NOCHECK");
        if (!acceptWord("NOCHECK"))
            expectWord("CHECK");
    }
    alterTableAction(*statement);
    return statement;
}

void Parser::alterTableAction(AlterTableStatement& alter) {
    using Action = AlterTableStatement::Action;
    if (acceptWord("ADD")) {
        do {
            tableElement(alter.body);
        } while (acceptSymbol(","));
    } else if (acceptWord("ALTER")) {
        expectWord("COLUMN");
        alter.action = Action::AlterColumn;
        alter.body.columns.push_back(columnClause());
    } else if (acceptWord("DROP")) {
        alter.action = Action::DropConstraints;
        if (acceptWord("COLUMN"))
            alter.action = Action::DropColumns;
        else
            acceptWord("CONSTRAINT");
        do {
            acceptWord(alter.action == Action::DropColumns ? "COLUMN" : "CONSTRAINT");
            alter.names.push_back(name());
        } while (acceptSymbol(","));
    } else if (isWord("CHECK") || isWord("NOCHECK")) {
        alter.action = Action::CheckConstraint;
        alter.enable = take().is("CHECK");
        expectWord("CONSTRAINT");
        do {
            alter.names.push_back(isWord("ALL") ? take().value() : name());
        } while (acceptSymbol(","));
    } else if (isWord("ENABLE") || isWord("DISABLE")) {
        alter.action = Action::Trigger;
        alter.enable = take().is("ENABLE");
        expectWord("TRIGGER");
        do {
            alter.names.push_back(isWord("ALL") ? take().value() : name());
        } while (acceptSymbol(","));
    } else {
        unexpected();
    }
}

StatementPtr Parser::createType() {
    auto statement = begin<CreateTypeStatement>();
    take();
    statement->name = objectName();
    if (acceptWord("AS"))
        return unsupported("CREATE TYPE AS TABLE");
    expectWord("FROM");
    statement->base = typeName();
    if (acceptWord("NULL")) {
        statement->nullable = true;
    } else if (acceptWord("NOT")) {
        expectWord("NULL");
        statement->nullable = false;
    }
    return statement;
}

} // namespace merchantry::db::tsql
