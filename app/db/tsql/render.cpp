#include "app/db/tsql/render.h"

#include "app/db/tsql/literal.h"

#include <map>

namespace merchantry::db::tsql {
namespace {

// How tightly a form holds together; what stands in a place that asks for more is put in parentheses.
enum class Strength { Any, Or, And, Not, Compare, Operand, Whole };

template <class F> Strength strengthOf(const F& /*form*/) {
    return Strength::Whole;
}
Strength strengthOf(const form::Literal& literal) {
    const Cell& cell = literal.cell;
    const bool negative = (cell.kind == Cell::Kind::Integer && cell.integer < 0) || (cell.kind == Cell::Kind::Real && cell.real < 0);
    return negative ? Strength::Operand : Strength::Whole;
}
Strength strengthOf(const form::Infix& /*form*/) {
    return Strength::Operand;
}
Strength strengthOf(const form::Inverted& /*form*/) {
    return Strength::Operand;
}
Strength strengthOf(const form::Compare& /*form*/) {
    return Strength::Compare;
}
Strength strengthOf(const form::IsNull& /*form*/) {
    return Strength::Compare;
}
Strength strengthOf(const form::InList& /*form*/) {
    return Strength::Compare;
}
Strength strengthOf(const form::InQuery& /*form*/) {
    return Strength::Compare;
}
Strength strengthOf(const form::Not& /*form*/) {
    return Strength::Not;
}
Strength strengthOf(const form::Junction& junction) {
    return junction.all ? Strength::And : Strength::Or;
}

const char* collationName(Collation collation) {
    switch (collation) {
    case Collation::CaseCounts:
        return "ts_cs";
    case Collation::Binary:
        return "ts_bin";
    default:
        return "ts";
    }
}

const char* signOf(form::Comparison comparison) {
    static constexpr const char* kSigns[] = {"=", "<>", "<", "<=", ">", ">=", " IS ", " IS NOT "};
    return kSigns[static_cast<int>(comparison)];
}

const char* setOperator(SetOperator op) {
    switch (op) {
    case SetOperator::Union:
        return " UNION ";
    case SetOperator::UnionAll:
        return " UNION ALL ";
    case SetOperator::Except:
        return " EXCEPT ";
    default:
        return " INTERSECT ";
    }
}

// Whether a query can stand as an operand without parentheses, which SQLite does not have there.
bool isPlainOperand(const BoundQuery& query, bool isLeft) {
    return query.orderBy.empty() && !query.isLimited() && (query.op == SetOperator::None || isLeft);
}

// Whether rows of the right side come without one of the left: such a join may not take in what a comma put before it.
bool keepsRight(const from::Any& source) {
    const auto* join = std::get_if<from::Join>(&source.is);
    return join && (join->kind == JoinKind::Right || join->kind == JoinKind::Full || keepsRight(*join->left));
}

class Renderer {
public:
    Sql3 done() { return {std::move(sql_), std::move(places_)}; }

    Renderer& text(std::string_view words) {
        sql_ += words;
        return *this;
    }

    // ---- values

    Renderer& value(const Typed& value, Strength least = Strength::Any) {
        std::visit(
            [&](const auto& form) {
                const bool apart = strengthOf(form) < least;
                text(apart ? "(" : "");
                write(form);
                text(apart ? ")" : "");
            },
            value.form->is);
        return *this;
    }

    template <class Values> Renderer& list(const Values& values, std::string_view between = ",", Strength least = Strength::Any) {
        bool first = true;
        for (const auto& one : values) {
            text(first ? "" : between);
            value(one, least);
            first = false;
        }
        return *this;
    }

    // ---- rows

    // Named: its columns bear the names _c0, _c1, ...
    void query(const BoundQuery& query, bool named) {
        body(query, named || !query.orderBy.empty());
        ordered(query.orderBy, " ORDER BY ");
        limit(query);
    }

    void tail(const BoundRows& rows) {
        if (rows.from)
            text(" FROM ").source(*rows.from);
        if (rows.where)
            text(" WHERE ").value(*rows.where);
        if (rows.limit)
            text(" LIMIT ").value(*rows.limit);
    }

    Renderer& source(const from::Any& source) {
        std::visit([&](const auto& one) { from(one); }, source.is);
        return *this;
    }

    // ---- changes

    void values(const BoundInsert& insert) {
        if (insert.from) {
            text("SELECT ").list(insert.rows[0]).text(" FROM ").source(*insert.from);
            return;
        }
        const char* before = "VALUES (";
        for (const std::vector<Typed>& row : insert.rows) {
            text(before).list(row).text(")");
            before = ",(";
        }
    }

    void insert(const BoundInsert& insert) {
        text("INSERT INTO ").text(insert.table->storage);
        const char* before = "(";
        for (const ColumnDef& column : insert.table->columns) {
            if (column.computed)
                continue;
            text(before).text(quotedName(column.name));
            before = ",";
        }
        text(") ");
        values(insert);
    }

    void update(const BoundUpdate& update) {
        text("UPDATE ").text(update.table->storage).text(" AS ").text(update.inPlace ? update.alias : "tt");
        const char* before = " SET ";
        for (const auto& [column, value] : update.values) {
            text(before).text(quotedName(update.table->columns[static_cast<std::size_t>(column)].name)).text("=");
            if (update.inPlace)
                this->value(value);
            else
                text("u._v" + std::to_string(column));
            before = ",";
        }
        if (update.inPlace)
            return tail({.from = std::nullopt, .where = update.rows.where, .limit = std::nullopt});
        text(" FROM ");
        worked(update);
        text(" WHERE tt._rowid_=u._rid");
    }

    // The new rows whole, beside what is stored.
    void newRows(const BoundUpdate& update) {
        text("SELECT u._rid");
        for (std::size_t i = 0; i < update.table->columns.size(); ++i) {
            const ColumnDef& column = update.table->columns[i];
            if (column.computed)
                continue;
            if (update.values.count(static_cast<int>(i)) != 0)
                text(",u._v" + std::to_string(i));
            else
                text(",tt.").text(quotedName(column.name));
        }
        text(" FROM ");
        worked(update);
        text(" JOIN ").text(update.table->storage).text(" AS tt ON tt._rowid_=u._rid");
    }

    void remove(const BoundDelete& removal) {
        text("DELETE FROM ").text(removal.table->storage);
        if (removal.inPlace) {
            text(" AS ").text(removal.alias).text(" WHERE ");
            if (removal.rows.where)
                value(*removal.rows.where);
            else
                text("1"); // or the rows would not be counted
            return;
        }
        text(" AS tt WHERE tt._rowid_ IN (SELECT ").value(removal.rowId);
        tail(removal.rows);
        text(")");
    }

private:
    // ---- forms

    void write(const form::Literal& literal) { text(literalSql(literal.cell)); }

    void write(const form::Place& place) {
        const auto [found, isNew] = placeOf_.try_emplace({place.holds.system, place.holds.slot}, places_.size() + 1);
        if (isNew)
            places_.push_back(place.holds);
        text("?" + std::to_string(found->second));
    }

    void write(const form::Column& column) {
        if (!column.alias.empty())
            text(column.alias).text(".");
        text(column.own ? column.name : quotedName(column.name));
    }

    void write(const form::Same& same) { value(same.value, Strength::Whole); }

    void write(const form::Call& call) {
        text(call.function).text(call.star ? "(*" : call.distinct ? "(DISTINCT " : "(").list(call.arguments).text(")");
    }

    void write(const form::Windowed& window) {
        value(window.call).text(" OVER (");
        if (!window.partition.empty())
            text("PARTITION BY ").list(window.partition);
        ordered(window.order, window.partition.empty() ? "ORDER BY " : " ORDER BY ");
        if (!window.frame.empty())
            text(" ").text(window.frame);
        text(")");
    }

    void write(const form::Infix& infix) { list(infix.operands, infix.sign, Strength::Whole); }
    void write(const form::Inverted& inverted) { text("~").value(inverted.value, Strength::Whole); }
    void write(const form::AsReal& real) { text("CAST(").value(real.value).text(" AS REAL)"); }

    void write(const form::Collated& collated) {
        value(collated.value, Strength::Whole).text(" COLLATE ").text(collationName(collated.collation));
    }

    void write(const form::Case& choice) {
        text("CASE");
        if (choice.input)
            text(" ").value(*choice.input);
        for (const auto& [when, then] : choice.whens)
            text(" WHEN ").value(when).text(" THEN ").value(then);
        if (choice.otherwise)
            text(" ELSE ").value(*choice.otherwise);
        text(" END");
    }

    void write(const form::Scalar& scalar) { within("(", *scalar.query, false); }

    void write(const form::Compare& compare) {
        value(compare.left, Strength::Operand).text(signOf(compare.comparison)).value(compare.right, Strength::Operand);
    }

    void write(const form::Junction& junction) {
        if (junction.all)
            list(junction.conditions, " AND ", Strength::Not);
        else
            list(junction.conditions, " OR ", Strength::And);
    }

    void write(const form::Not& inverse) { text("NOT ").value(inverse.condition, Strength::Compare); }

    void write(const form::IsNull& test) { value(test.value, Strength::Operand).text(test.negated ? " IS NOT NULL" : " IS NULL"); }

    void write(const form::InList& in) { value(in.value, Strength::Operand).text(" IN (").list(in.members).text(")"); }

    void write(const form::InQuery& in) {
        value(in.value, Strength::Operand);
        within(" IN (", *in.query, false);
    }

    void write(const form::Exists& exists) { within("EXISTS (", *exists.query, false); }

    // ---- queries

    void body(const BoundQuery& query, bool named) {
        if (query.op == SetOperator::None)
            return select(query, named);
        operand(*query.left, true);
        text(setOperator(query.op));
        operand(*query.right, false);
    }

    void operand(const BoundQuery& side, bool isLeft) {
        if (isPlainOperand(side, isLeft))
            return query(side, true);
        text("SELECT * FROM (");
        query(side, true);
        text(")");
    }

    void select(const BoundQuery& query, bool named) {
        const char* before = query.distinct ? "SELECT DISTINCT " : "SELECT ";
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            const Typed& one = query.columns[i].value;
            const bool bare = !one.type.isText() || (one.isColumn() && one.collation == Collation::None);
            text(before).value(bare ? one : collated(one));
            if (named)
                text(" AS _c" + std::to_string(i));
            before = ",";
        }
        for (std::size_t i = 0; query.hasRowIds && i < query.bases.size(); ++i)
            text(",").value(query.bases[i].rowId).text(" AS _r" + std::to_string(i));
        if (query.depth)
            text(",").value(*query.depth);
        tail(query.rows);
        if (!query.groups.empty())
            text(" GROUP BY ").list(query.groups);
        if (query.having)
            text(" HAVING ").value(*query.having);
    }

    void ordered(const std::vector<form::Ordered>& items, const char* before) {
        for (const form::Ordered& item : items) {
            text(before).value(item.value).text(item.descending ? " DESC" : "");
            before = ",";
        }
    }

    void limit(const BoundQuery& query) {
        if (query.percent) {
            text(" LIMIT (SELECT ts_percent(COUNT(*),").value(*query.percent).text(") FROM (");
            body(query, true);
            text("))");
        } else if (query.limit || query.offset) {
            text(" LIMIT ");
            if (query.limit)
                value(*query.limit);
            else
                text("-1");
            if (query.offset)
                text(" OFFSET ").value(*query.offset);
        }
    }

    // ---- FROM

    void from(const from::List& list) {
        for (std::size_t i = 0; i < list.members.size(); ++i) {
            // Parentheses only where they matter: a table within them hides its row from the select around.
            const bool apart = i > 0 && keepsRight(list.members[i]);
            text(i > 0 ? "," : "").text(apart ? "(" : "").source(list.members[i]).text(apart ? ")" : "");
        }
    }

    void from(const from::Table& table) {
        text(table.storage);
        named(table.alias);
    }

    void from(const from::Subquery& inner) {
        within("(", *inner.query, true);
        named(inner.alias);
    }

    void from(const from::Values& values) {
        const char* before = "(SELECT ";
        for (const std::vector<Typed>& row : values.rows) {
            for (std::size_t i = 0; i < row.size(); ++i)
                text(i == 0 ? before : ",").value(collated(row[i])).text(" AS _c" + std::to_string(i));
            before = " UNION ALL SELECT ";
        }
        text(")");
        named(values.alias);
    }

    void from(const from::Recursive& recursive) {
        text("(WITH RECURSIVE ").text(recursive.name).text("(");
        for (std::size_t i = 0; i < recursive.anchor->columns.size(); ++i)
            text("_c" + std::to_string(i) + ",");
        text("_lv) AS (");
        query(*recursive.anchor, true);
        text(" UNION ALL ");
        query(*recursive.step, true);
        text(") SELECT * FROM ").text(recursive.name).text(")");
        named(recursive.alias);
    }

    void from(const from::Join& join) {
        static constexpr const char* kWords[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ", " JOIN "};
        const bool apart = std::holds_alternative<from::Join>(join.right->is);
        source(*join.left).text(kWords[static_cast<int>(join.kind)]);
        text(apart ? "(" : "").source(*join.right).text(apart ? ")" : "");
        if (join.on)
            text(" ON ").value(*join.on);
    }

    void within(const char* before, const BoundQuery& inner, bool isNamed) {
        text(before);
        query(inner, isNamed);
        text(")");
    }

    void named(const std::string& alias) {
        if (!alias.empty())
            text(" AS ").text(alias);
    }

    // The rows of an update with their rowids and new values, as u.
    void worked(const BoundUpdate& update) {
        text("(SELECT ").value(update.rowId).text(" AS _rid");
        for (const auto& [column, one] : update.values)
            text(",").value(one).text(" AS _v" + std::to_string(column));
        tail(update.rows);
        text(") AS u");
    }

    std::string sql_;
    std::vector<Placeholder> places_;
    std::map<std::pair<bool, int>, std::size_t> placeOf_;
};

template <class F> Sql3 rendered(F&& write) {
    Renderer renderer;
    write(renderer);
    return renderer.done();
}

} // namespace

Sql3 render(const BoundQuery& query) {
    return rendered([&](Renderer& to) { to.query(query, false); });
}

Sql3 render(const Typed& value) {
    return rendered([&](Renderer& to) { to.text("SELECT ").value(value); });
}

Sql3 render(const BoundInsert& insert) {
    return rendered([&](Renderer& to) { to.insert(insert); });
}

Sql3 render(const BoundUpdate& update) {
    return rendered([&](Renderer& to) { to.update(update); });
}

Sql3 render(const BoundDelete& removal) {
    return rendered([&](Renderer& to) { to.remove(removal); });
}

Sql3 renderRows(const BoundInsert& insert) {
    return rendered([&](Renderer& to) { to.values(insert); });
}

Sql3 renderRows(const BoundUpdate& update) {
    return rendered([&](Renderer& to) { to.newRows(update); });
}

Sql3 renderRows(const std::vector<Typed>& values, const BoundRows& rows) {
    return rendered([&](Renderer& to) { to.text("SELECT ").list(values).tail(rows); });
}

Sql3 renderDefinition(const Typed& condition) {
    return rendered([&](Renderer& to) { to.value(condition); });
}

} // namespace merchantry::db::tsql
