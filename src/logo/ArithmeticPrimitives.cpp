// The arithmetic rows beyond the operators: rounding, roots, powers and the trigonometry, which
// works in degrees.
#include <climits>
#include <cmath>
#include <cstdio>

#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"

namespace {

inline constexpr double kRadiansPerDegree = 0.017453292519943295;
inline constexpr double kDegreesPerRadian = 57.2957795131;
// FORM's limits, and what it uses in place of an input outside them.
inline constexpr int32_t kFormMaxWidth = 128;
inline constexpr int32_t kFormDefaultWidth = 16;
inline constexpr int32_t kFormMaxPlaces = 6;
// Numbers outside this band of magnitude take the exponent form.
inline constexpr double kFormFixedLow = 1e-6;
inline constexpr double kFormFixedHigh = 999999;

// A real to an integer, the nearest end standing for what is out of range.
int32_t ToInteger(double d) {
    if (!(d > -2147483649.0)) return INT32_MIN;
    if (!(d < 2147483648.0)) return INT32_MAX;
    return static_cast<int32_t>(d);
}

Node* RealOf(PrimitiveCall& call, double (*f)(double), double scaleIn, double scaleOut) {
    return MakeFloat(f(GetFloat(call.in[0], call.row) * scaleIn) * scaleOut);
}

}  // namespace

Node* PrimAbs(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsInteger(x)) return MakeInteger(x->integer < 0 ? static_cast<int32_t>(0u - static_cast<uint32_t>(x->integer)) : x->integer);
    return MakeFloat(std::fabs(GetFloat(x, call.row)));
}

Node* PrimInt(PrimitiveCall& call) {
    Node* x = call.in[0];
    return IsInteger(x) ? x : MakeInteger(ToInteger(std::trunc(GetFloat(x, call.row))));
}

Node* PrimRound(PrimitiveCall& call) {
    Node* x = call.in[0];
    return IsInteger(x) ? x : MakeInteger(ToInteger(std::floor(GetFloat(x, call.row) + 0.5)));
}

Node* PrimFloat(PrimitiveCall& call) { return MakeFloat(GetFloat(call.in[0], call.row)); }

Node* PrimSqrt(PrimitiveCall& call) {
    const double x = GetFloat(call.in[0], call.row);
    if (x < 0) ReportErrorAtRow(41, call.row, call.in[0]);
    return MakeFloat(std::sqrt(std::fabs(x)));
}

Node* PrimPower(PrimitiveCall& call) {
    return MakeFloat(std::pow(GetFloat(call.in[0], call.row), GetFloat(call.in[1], call.row)));
}

Node* PrimSin(PrimitiveCall& call) { return RealOf(call, std::sin, kRadiansPerDegree, 1.0); }
Node* PrimCos(PrimitiveCall& call) { return RealOf(call, std::cos, kRadiansPerDegree, 1.0); }
Node* PrimTan(PrimitiveCall& call) { return RealOf(call, std::tan, kRadiansPerDegree, 1.0); }
Node* PrimArcSin(PrimitiveCall& call) { return RealOf(call, std::asin, 1.0, kDegreesPerRadian); }
Node* PrimArcCos(PrimitiveCall& call) { return RealOf(call, std::acos, 1.0, kDegreesPerRadian); }
Node* PrimArcTan(PrimitiveCall& call) { return RealOf(call, std::atan, 1.0, kDegreesPerRadian); }
Node* PrimExp(PrimitiveCall& call) { return RealOf(call, std::exp, 1.0, 1.0); }
Node* PrimLn(PrimitiveCall& call) { return RealOf(call, std::log, 1.0, 1.0); }

// A heading, clockwise from north, of the point (x, y): the point's x comes first.
Node* PrimArcTan2(PrimitiveCall& call) {
    const double x = GetFloat(call.in[0], call.row), y = GetFloat(call.in[1], call.row);
    double heading = 90.0 - std::atan2(y, x) * kDegreesPerRadian;
    if (heading < 0) heading += 360.0;
    return MakeFloat(heading);
}

Node* PrimForm(PrimitiveCall& call) {
    const double x = GetFloat(call.in[0], call.row);
    int32_t width = GetInteger(call.in[1], call.row);
    int32_t places = GetInteger(call.in[2], call.row);
    if (width < 1 || width > kFormMaxWidth) {
        ReportErrorAtRow(41, call.row, call.in[1]);
        width = kFormDefaultWidth;
    }
    if (places < 0 || places > kFormMaxPlaces) {
        ReportErrorAtRow(41, call.row, call.in[2]);
        places = kFormMaxPlaces;
    }
    const double magnitude = std::fabs(x);
    const bool fixed = magnitude >= kFormFixedLow && magnitude <= kFormFixedHigh;
    char text[kFormMaxWidth + 32];
    std::snprintf(text, sizeof text, fixed ? "%*.*f" : "%*.*E", static_cast<int>(width), static_cast<int>(places), x);
    return MakeWord(text);
}
