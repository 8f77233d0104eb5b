// Functions of <cmath> that mingw-w64 has versions of its own of, which are off by more than the
// last bit: its sin and cos by half of all digits for large numbers, its pow for whole exponents,
// its round just below a half. The linker takes these in their place.
#include <cmath>

extern "C" {

// As the system's own library has them.
extern double (*__imp_cos)(double);
extern double (*__imp_pow)(double, double);
extern double (*__imp_sin)(double);

double cos(double x) { return __imp_cos(x); }
double pow(double x, double y) { return __imp_pow(x, y); }
double sin(double x) { return __imp_sin(x); }

double round(double x) {
    const double whole = std::trunc(x);
    return std::fabs(x - whole) < 0.5 ? whole : whole + std::copysign(1.0, x);
}

}  // extern "C"
