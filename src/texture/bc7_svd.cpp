#include "texture/bc7_svd.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "frame/memory_kernels.h"

namespace q3 {
namespace {

constexpr int mostColumns = 4;
constexpr int mostSweeps = 30;
constexpr double epsilon = 0x1p-23;

using Column = std::array<float, mostColumns>;

double dotOf(const float* a, int aStep, const float* b, int bStep, int count)
{
    double sum = 0;
    for (int i = 0; i < count; ++i) sum += static_cast<double>(a[i * aStep]) * b[i * bStep];
    return sum;
}

// y += h (y . x) x for each of the rows of y but the first.
void icxMatrAXPY3_32f(int rows, int cols, const float* x, int step, float* y, double h)
{
    for (int r = 1; r < rows; ++r) {
        float* const row = y + r * step;
        const double s = dotOf(row, 1, x, 1, cols) * h;
        for (int c = 0; c < cols; ++c) row[c] = static_cast<float>(row[c] + s * x[c]);
    }
}

// A Householder vector v of the `count` values at x, which replaces them: I + v v' / h takes them to (g, 0, ...).
struct Householder {
    double g = 0;
    double h = 0;  // 0: nothing to do

    Householder(float* x, int step, int count)
    {
        const double norm = dotOf(x, step, x, step, count);
        if (norm == 0)
            return;
        const double first = x[0];
        g = -std::copysign(std::sqrt(norm), first);
        h = first * g - norm;
        x[0] = static_cast<float>(first - g);
    }
};

double hypotenuse(double a, double b)
{
    const double larger = std::max(std::abs(a), std::abs(b));
    const double smaller = std::min(std::abs(a), std::abs(b));
    if (larger == 0)
        return 0;
    const double ratio = smaller / larger;
    return larger * std::sqrt(1 + ratio * ratio);
}

void rotate(float* x, float* y, int count, double c, double s)
{
    for (int i = 0; i < count; ++i) {
        const double a = x[i], b = y[i];
        x[i] = static_cast<float>(a * c + b * s);
        y[i] = static_cast<float>(b * c - a * s);
    }
}

// A bidiagonal matrix with `diagonal`, and `above` each of its elements but the first another one.
class Bidiagonal {
public:
    Bidiagonal(int n, float* w, float* vT, int ldvT) : n_(n), w_(w), vT_(vT), ldvT_(ldvT)
    {
        veksZero_32f(w, n);
        veksZero_32f(above_.data(), mostColumns);
    }

    void reduce(int m, float* a, int lda)
    {
        std::array<double, mostColumns> factors{};
        for (int i = 0; i < n_ && i < m; ++i) {
            float* const corner = a + i * lda + i;
            const Householder column(corner, lda, m - i);
            w_[i] = static_cast<float>(column.g);
            if (column.h != 0) {
                for (int j = 1; j < n_ - i; ++j) {
                    const double s = dotOf(corner, lda, corner + j, lda, m - i) / column.h;
                    for (int k = 0; k < m - i; ++k)
                        corner[k * lda + j] = static_cast<float>(corner[k * lda + j] + s * corner[k * lda]);
                }
            }
            const int right = n_ - i - 1;
            if (right == 0)
                continue;
            const Householder row(corner + 1, 1, right);
            above_[static_cast<size_t>(i) + 1] = static_cast<float>(row.g);
            if (row.h != 0) {
                factors[static_cast<size_t>(i)] = 1 / row.h;
                icxMatrAXPY3_32f(m - i, right, corner + 1, lda, corner + 1, 1 / row.h);
            }
        }
        for (int i = 0; i < n_; ++i) {
            veksZero_32f(vT_ + i * ldvT_, n_);
            vT_[i * ldvT_ + i] = 1;
        }
        for (int i = std::min(n_, m) - 1; i >= 0; --i) {
            const int right = n_ - i - 1;
            if (factors[static_cast<size_t>(i)] != 0)
                icxMatrAXPY3_32f(right + 1, right, a + i * lda + i + 1, ldvT_, vT_ + i * ldvT_ + i + 1,
                                 factors[static_cast<size_t>(i)]);
        }
    }

    void diagonalise()
    {
        double largest = 0;
        for (int i = 0; i < n_; ++i)
            largest =
                std::max({largest, std::abs(static_cast<double>(w_[i])), std::abs(static_cast<double>(above(i)))});
        const double negligible = epsilon * largest;
        for (int k = n_ - 1; k >= 0; --k) {
            for (int sweep = 0; sweep < mostSweeps; ++sweep) {
                const int l = splitPoint(k, negligible);
                if (l == k)
                    break;
                sweepFrom(l, k);
            }
            if (w_[k] < 0) {
                w_[k] = -w_[k];
                for (int c = 0; c < n_; ++c) row(k)[c] = -row(k)[c];
            }
        }
    }

    // The largest first.
    void sort()
    {
        for (int i = 0; i < n_ - 1; ++i) {
            int largest = i;
            for (int j = i + 1; j < n_; ++j) largest = w_[j] > w_[largest] ? j : largest;
            if (largest == i)
                continue;
            std::swap(w_[i], w_[largest]);
            std::swap_ranges(row(i), row(i) + n_, row(largest));
        }
    }

private:
    float& above(int i) { return above_[static_cast<size_t>(i)]; }
    float* row(int i) { return vT_ + i * ldvT_; }

    // Where the part that ends with k begins. If an element of the diagonal before it is negligible, the one above goes
    // too.
    int splitPoint(int k, double negligible)
    {
        for (int l = k; l > 0; --l) {
            if (std::abs(above(l)) <= negligible)
                return l;
            if (std::abs(w_[l - 1]) <= negligible) {
                cancel(l, k, negligible);
                return l;
            }
        }
        return 0;
    }

    void cancel(int l, int k, double negligible)
    {
        double c = 0, s = 1;
        for (int i = l; i <= k; ++i) {
            const double f = s * above(i);
            above(i) = static_cast<float>(c * above(i));
            if (std::abs(f) <= negligible)
                return;
            const double g = w_[i];
            const double h = hypotenuse(f, g);
            w_[i] = static_cast<float>(h);
            c = g / h;
            s = -f / h;
        }
    }

    // One implicit-shift QR step.
    void sweepFrom(int l, int k)
    {
        const double z = w_[k];
        double x = w_[l];
        double y = w_[k - 1];
        double g = above(k - 1);
        double h = above(k);
        double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
        g = hypotenuse(f, 1);
        f = ((x - z) * (x + z) + h * (y / (f + std::copysign(g, f)) - h)) / x;
        double c = 1, s = 1;
        for (int i = l + 1; i <= k; ++i) {
            g = above(i);
            y = w_[i];
            h = s * g;
            g = c * g;
            double hypotenuseOf = hypotenuse(f, h);
            above(i - 1) = static_cast<float>(hypotenuseOf);
            c = hypotenuseOf == 0 ? 1 : f / hypotenuseOf;
            s = hypotenuseOf == 0 ? 0 : h / hypotenuseOf;
            f = x * c + g * s;
            g = g * c - x * s;
            h = y * s;
            y = y * c;
            rotate(row(i - 1), row(i), n_, c, s);
            hypotenuseOf = hypotenuse(f, h);
            w_[i - 1] = static_cast<float>(hypotenuseOf);
            if (hypotenuseOf != 0) {
                c = f / hypotenuseOf;
                s = h / hypotenuseOf;
            }
            f = c * g + s * y;
            x = c * y - s * g;
        }
        above(l) = 0;
        above(k) = static_cast<float>(f);
        w_[k] = static_cast<float>(x);
    }

    int n_;
    float* w_;
    float* vT_;
    int ldvT_;
    Column above_;
};

}  // namespace

void svd_32f(int n, int m, float* a, int lda, float* w, float* vT, int ldvT)
{
    Bidiagonal matrix(n, w, vT, ldvT);
    matrix.reduce(m, a, lda);
    matrix.diagonalise();
    matrix.sort();
}

}  // namespace q3
