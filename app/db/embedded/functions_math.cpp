#include "app/db/embedded/functions.h"

#include "app/db/messages.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"

#include <array>
#include <cmath>
#include <random>

namespace merchantry::db::embedded {
namespace {

using Wide = __int128;

Wide powerOfTen(int exponent) {
    Wide power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

DbError divideByZero() {
    return serverMessage(Message::DivideByZero).withSeverity(16, 1);
}

// ---- whole numbers: one function for each operator and type

struct Tiny {
    static constexpr std::int64_t kLow = 0;
    static constexpr std::int64_t kHigh = 255;
    static constexpr TypeKind kKind = TypeKind::TinyInt;
};
struct Small {
    static constexpr std::int64_t kLow = INT16_MIN;
    static constexpr std::int64_t kHigh = INT16_MAX;
    static constexpr TypeKind kKind = TypeKind::SmallInt;
};
struct Int {
    static constexpr std::int64_t kLow = INT32_MIN;
    static constexpr std::int64_t kHigh = INT32_MAX;
    static constexpr TypeKind kKind = TypeKind::Int;
};
struct Big {
    static constexpr std::int64_t kLow = INT64_MIN;
    static constexpr std::int64_t kHigh = INT64_MAX;
    static constexpr TypeKind kKind = TypeKind::BigInt;
};
struct Money {
    static constexpr std::int64_t kLow = INT64_MIN;
    static constexpr std::int64_t kHigh = INT64_MAX;
    static constexpr TypeKind kKind = TypeKind::Money;
};

template <class T> void giveChecked(const Call& call, Wide number) {
    if (number < T::kLow || number > T::kHigh)
        throw tsql::overflow(tsql::simpleType(T::kKind));
    call.give(static_cast<std::int64_t>(number));
}

// Of two or more, each step within the type.
template <class T> void add(const Call& call) {
    Wide sum = call.integer(0);
    for (int i = 1; i < call.count; ++i) {
        sum += call.integer(i);
        if (sum < T::kLow || sum > T::kHigh)
            throw tsql::overflow(tsql::simpleType(T::kKind));
    }
    call.give(static_cast<std::int64_t>(sum));
}

template <class T> void subtract(const Call& call) {
    giveChecked<T>(call, static_cast<Wide>(call.integer(0)) - call.integer(1));
}

template <class T> void multiply(const Call& call) {
    giveChecked<T>(call, static_cast<Wide>(call.integer(0)) * call.integer(1));
}

template <class T> void divide(const Call& call) {
    if (call.integer(1) == 0)
        throw divideByZero();
    giveChecked<T>(call, static_cast<Wide>(call.integer(0)) / call.integer(1));
}

template <class T> void modulo(const Call& call) {
    if (call.integer(1) == 0)
        throw divideByZero();
    giveChecked<T>(call, static_cast<Wide>(call.integer(0)) % call.integer(1));
}

template <class T> void exclusiveOr(const Call& call) {
    giveChecked<T>(call, call.integer(0) ^ call.integer(1));
}

// ---- money

void multiplyMoney(const Call& call) {
    giveChecked<Money>(call, tsql::scaledDown(static_cast<Wide>(call.integer(0)) * call.integer(1), 4));
}

// Cut after four places.
void divideMoney(const Call& call) {
    if (call.integer(1) == 0)
        throw divideByZero();
    giveChecked<Money>(call, static_cast<Wide>(call.integer(0)) * 10000 / call.integer(1));
}

// Too large is another error than no number at all.
double finite(double number) {
    if (std::isinf(number))
        throw tsql::overflow(tsql::simpleType(TypeKind::Float));
    if (std::isnan(number))
        throw serverMessage(Message::InvalidFloat).withSeverity(16, 1);
    return number;
}

void giveFloat(const Call& call, double number) {
    call.give(finite(number));
}

void divideFloat(const Call& call) {
    if (call.real(1) == 0)
        throw divideByZero();
    giveFloat(call, call.real(0) / call.real(1));
}

// The result of a sum, difference or product.
void checkFloat(const Call& call) {
    giveFloat(call, call.real(0));
}

// ---- decimals: (a, b, scale of a, scale of b, precision and scale of the result)

struct DecimalCall {
    Wide left;
    Wide right;
    int leftScale;
    int rightScale;
    SqlType type;
};

DecimalCall decimalCall(const Call& call) {
    return {tsql::digitsOf(call.cell(0)), tsql::digitsOf(call.cell(1)), static_cast<int>(call.integer(2)),
            static_cast<int>(call.integer(3)), tsql::decimalType(static_cast<int>(call.integer(4)), static_cast<int>(call.integer(5)))};
}

Wide scaledUp(Wide digits, int places, const SqlType& type) {
    Wide result = 0;
    if (__builtin_mul_overflow(digits, powerOfTen(places), &result))
        throw tsql::overflow(type);
    return result;
}

void giveDecimal(const Call& call, Wide digits, int scale, const SqlType& type) {
    digits = scale > type.scale ? tsql::scaledDown(digits, scale - type.scale) : scaledUp(digits, type.scale - scale, type);
    call.give(tsql::checkedDecimal(digits, type));
}

template <int kSign> void addDecimal(const Call& call) {
    const DecimalCall c = decimalCall(call);
    const int scale = std::max(c.leftScale, c.rightScale);
    Wide sum = 0;
    if (__builtin_add_overflow(scaledUp(c.left, scale - c.leftScale, c.type), scaledUp(c.right, scale - c.rightScale, c.type) * kSign,
                               &sum))
        throw tsql::overflow(c.type);
    giveDecimal(call, sum, scale, c.type);
}

void multiplyDecimal(const Call& call) {
    DecimalCall c = decimalCall(call);
    Wide product = 0;
    // Digits that would fall off anyway are dropped before they overflow.
    while (__builtin_mul_overflow(c.left, c.right, &product)) {
        if (c.leftScale + c.rightScale <= c.type.scale)
            throw tsql::overflow(c.type);
        if (c.leftScale >= c.rightScale) {
            c.left = tsql::scaledDown(c.left, 1);
            --c.leftScale;
        } else {
            c.right = tsql::scaledDown(c.right, 1);
            --c.rightScale;
        }
    }
    giveDecimal(call, product, c.leftScale + c.rightScale, c.type);
}

// Long division, cut at the scale of the result.
void divideDecimal(const Call& call) {
    const DecimalCall c = decimalCall(call);
    if (c.right == 0)
        throw divideByZero();
    int places = c.type.scale - c.leftScale + c.rightScale;
    Wide quotient = c.left / c.right;
    Wide rest = c.left % c.right;
    for (; places > 0; --places) {
        Wide next = 0;
        if (__builtin_mul_overflow(rest, static_cast<Wide>(10), &rest) || __builtin_mul_overflow(quotient, static_cast<Wide>(10), &next))
            throw tsql::overflow(c.type);
        quotient = next + rest / c.right;
        rest %= c.right;
    }
    for (; places < 0; ++places)
        quotient /= 10;
    call.give(tsql::checkedDecimal(quotient, c.type));
}

void moduloDecimal(const Call& call) {
    const DecimalCall c = decimalCall(call);
    if (c.right == 0)
        throw divideByZero();
    const int scale = std::max(c.leftScale, c.rightScale);
    giveDecimal(call, scaledUp(c.left, scale - c.leftScale, c.type) % scaledUp(c.right, scale - c.rightScale, c.type), scale, c.type);
}

void negateDecimal(const Call& call) {
    call.give(tsql::decimalCell(-tsql::digitsOf(call.cell(0)), static_cast<int>(call.integer(1))));
}

// ---- functions of numbers, which get the type of their argument

Wide roundedTo(Wide digits, int drop, bool cut) {
    if (drop <= 0)
        return digits;
    if (drop > 37)
        return 0;
    const Wide unit = powerOfTen(drop);
    return (cut ? digits / unit : tsql::scaledDown(digits, drop)) * unit;
}

void round(const Call& call) {
    const std::int64_t places = std::max<std::int64_t>(std::min<std::int64_t>(call.integer(1), 40), -40);
    const bool cut = call.integer(2) != 0;
    const SqlType type = tsql::typeOfCode(call.integer(3));
    if (type.isFloat()) {
        const double factor = std::pow(10.0, static_cast<double>(places));
        const double scaled = call.real(0) * factor;
        const double result = (cut ? std::trunc(scaled) : std::round(scaled)) / factor;
        return call.give(std::isfinite(result) ? result : call.real(0));
    }
    const int scale = type.kind == TypeKind::Decimal ? type.scale : type.isMoney() ? 4 : 0;
    const Wide digits = roundedTo(tsql::digitsOf(call.cell(0)), scale - static_cast<int>(places), cut);
    if (type.kind == TypeKind::Decimal)
        return call.give(tsql::checkedDecimal(digits, type));
    if (type.kind == TypeKind::Int)
        return giveChecked<Int>(call, digits);
    giveChecked<Big>(call, digits);
}

Wide floored(Wide digits, Wide unit, bool up) {
    Wide whole = digits / unit;
    const Wide rest = digits % unit;
    if (rest != 0 && up && digits > 0)
        ++whole;
    if (rest != 0 && !up && digits < 0)
        --whole;
    return whole;
}

template <bool kUp> void floor(const Call& call) {
    const SqlType type = tsql::typeOfCode(call.integer(1));
    if (type.isFloat())
        return call.give(kUp ? std::ceil(call.real(0)) : std::floor(call.real(0)));
    if (type.kind == TypeKind::Decimal) {
        const Wide digits = floored(tsql::digitsOf(call.cell(0)), powerOfTen(type.scale), kUp);
        return call.give(tsql::checkedDecimal(digits, tsql::decimalType(type.precision, 0)));
    }
    if (type.isMoney())
        return giveChecked<Money>(call, floored(call.integer(0), 10000, kUp) * 10000);
    call.give(call.integer(0));
}

void absolute(const Call& call) {
    const SqlType type = tsql::typeOfCode(call.integer(1));
    if (type.isFloat())
        return call.give(std::fabs(call.real(0)));
    const Wide digits = tsql::digitsOf(call.cell(0));
    const Wide result = digits < 0 ? -digits : digits;
    if (type.kind == TypeKind::Decimal)
        return call.give(tsql::checkedDecimal(result, type));
    if (type.kind == TypeKind::Int)
        return giveChecked<Int>(call, result);
    giveChecked<Big>(call, result);
}

void sign(const Call& call) {
    const SqlType type = tsql::typeOfCode(call.integer(1));
    if (type.isFloat())
        return call.give(call.real(0) > 0 ? 1.0 : call.real(0) < 0 ? -1.0 : 0.0);
    const Wide digits = tsql::digitsOf(call.cell(0));
    const Wide result = digits > 0 ? 1 : digits < 0 ? -1 : 0;
    if (type.kind == TypeKind::Decimal)
        return call.give(tsql::checkedDecimal(result * powerOfTen(type.scale), type));
    call.give(static_cast<std::int64_t>(type.isMoney() ? result * 10000 : result));
}

void power(const Call& call) {
    const SqlType from = tsql::typeOfCode(call.integer(2));
    const SqlType to = tsql::typeOfCode(call.integer(3));
    const SqlType real = tsql::simpleType(TypeKind::Float);
    const double base = tsql::converted(call.cell(0), from, real).real;
    const double result = finite(std::pow(base, call.real(1)));
    call.give(tsql::converted(Cell::ofReal(result), real, to));
}

void squareRoot(const Call& call) {
    giveFloat(call, std::sqrt(call.real(0)));
}
void square(const Call& call) {
    giveFloat(call, call.real(0) * call.real(0));
}
void exponential(const Call& call) {
    giveFloat(call, std::exp(call.real(0)));
}
void logarithm(const Call& call) {
    giveFloat(call, std::log(call.real(0)));
}
void logarithm10(const Call& call) {
    giveFloat(call, std::log10(call.real(0)));
}
void sine(const Call& call) {
    giveFloat(call, std::sin(call.real(0)));
}
void cosine(const Call& call) {
    giveFloat(call, std::cos(call.real(0)));
}
void tangent(const Call& call) {
    giveFloat(call, std::tan(call.real(0)));
}
void cotangent(const Call& call) {
    giveFloat(call, 1 / std::tan(call.real(0)));
}
void arcSine(const Call& call) {
    giveFloat(call, std::asin(call.real(0)));
}
void arcCosine(const Call& call) {
    giveFloat(call, std::acos(call.real(0)));
}
void arcTangent(const Call& call) {
    giveFloat(call, std::atan(call.real(0)));
}
void arcTangent2(const Call& call) {
    giveFloat(call, std::atan2(call.real(0), call.real(1)));
}
void pi(const Call& call) {
    call.give(3.14159265358979312);
}
void degrees(const Call& call) {
    call.give(call.real(0) * 180.0 / 3.14159265358979312);
}
void radians(const Call& call) {
    call.give(call.real(0) * 3.14159265358979312 / 180.0);
}

void random(const Call& call) {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    if (call.count > 0 && !call.isNull(0))
        generator.seed(static_cast<std::uint64_t>(call.integer(0)));
    call.give(std::uniform_real_distribution<double>(0.0, 1.0)(generator));
}

} // namespace

void registerMathFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_add_tiny", -1, add<Tiny>},
        {"ts_sub_tiny", 2, subtract<Tiny>},
        {"ts_mul_tiny", 2, multiply<Tiny>},
        {"ts_div_tiny", 2, divide<Tiny>},
        {"ts_mod_tiny", 2, modulo<Tiny>},
        {"ts_xor_tiny", 2, exclusiveOr<Tiny>},
        {"ts_add_small", -1, add<Small>},
        {"ts_sub_small", 2, subtract<Small>},
        {"ts_mul_small", 2, multiply<Small>},
        {"ts_div_small", 2, divide<Small>},
        {"ts_mod_small", 2, modulo<Small>},
        {"ts_xor_small", 2, exclusiveOr<Small>},
        {"ts_add_int", -1, add<Int>},
        {"ts_sub_int", 2, subtract<Int>},
        {"ts_mul_int", 2, multiply<Int>},
        {"ts_div_int", 2, divide<Int>},
        {"ts_mod_int", 2, modulo<Int>},
        {"ts_xor_int", 2, exclusiveOr<Int>},
        {"ts_add_big", -1, add<Big>},
        {"ts_sub_big", 2, subtract<Big>},
        {"ts_mul_big", 2, multiply<Big>},
        {"ts_div_big", 2, divide<Big>},
        {"ts_mod_big", 2, modulo<Big>},
        {"ts_xor_big", 2, exclusiveOr<Big>},
        {"ts_add_money", -1, add<Money>},
        {"ts_sub_money", 2, subtract<Money>},
        {"ts_mul_money", 2, multiplyMoney},
        {"ts_div_money", 2, divideMoney},
        {"ts_mod_money", 2, modulo<Money>},
        {"ts_div_float", 2, divideFloat},
        {"ts_float", 1, checkFloat},
        {"ts_add_dec", 6, addDecimal<1>},
        {"ts_sub_dec", 6, addDecimal<-1>},
        {"ts_mul_dec", 6, multiplyDecimal},
        {"ts_div_dec", 6, divideDecimal},
        {"ts_mod_dec", 6, moduloDecimal},
        {"ts_dec_neg", 2, negateDecimal},
        {"ts_round", 4, round},
        {"ts_floor", 2, floor<false>},
        {"ts_ceiling", 2, floor<true>},
        {"ts_abs", 2, absolute},
        {"ts_sign", 2, sign},
        {"ts_power", 4, power},
        {"ts_sqrt", 1, squareRoot},
        {"ts_square", 1, square},
        {"ts_exp", 1, exponential},
        {"ts_log", 1, logarithm},
        {"ts_log10", 1, logarithm10},
        {"ts_sin", 1, sine},
        {"ts_cos", 1, cosine},
        {"ts_tan", 1, tangent},
        {"ts_cot", 1, cotangent},
        {"ts_asin", 1, arcSine},
        {"ts_acos", 1, arcCosine},
        {"ts_atan", 1, arcTangent},
        {"ts_atn2", 2, arcTangent2},
        {"ts_pi", 0, pi},
        {"ts_degrees", 1, degrees},
        {"ts_radians", 1, radians},
        {"ts_rand", -1, random, false, false},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
