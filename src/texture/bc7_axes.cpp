// The steps of svd_32f, for four matrices side by side: every operation on a lane is the one that svd_32f does, in its
// order; where it branches, lanes that do not go the same way keep what they hold.
#include "texture/bc7_axes.h"

#include <algorithm>

namespace q3 {
namespace {

constexpr size_t mostColumns = 4;
constexpr int mostSweeps = 30;
constexpr double epsilon = 0x1p-23;

__m256d number(double v) { return _mm256_set1_pd(v); }
__m256d wide(__m128 v) { return _mm256_cvtps_pd(v); }
__m256d signBits() { return number(-0.0); }
__m256d magnitude(__m256d v) { return _mm256_andnot_pd(signBits(), v); }
__m256d negated(__m256d v) { return _mm256_xor_pd(v, signBits()); }
__m256d withSignOf(__m256d magnitudes, __m256d signs)
{
    return _mm256_or_pd(magnitude(magnitudes), _mm256_and_pd(signs, signBits()));
}
__m256d isZero(__m256d v) { return _mm256_cmp_pd(v, _mm256_setzero_pd(), _CMP_EQ_OQ); }
__m256d equals(__m256d v, size_t i) { return _mm256_cmp_pd(v, number(static_cast<double>(i)), _CMP_EQ_OQ); }
__m256d isAtMost(__m256d a, __m256d b) { return _mm256_cmp_pd(a, b, _CMP_LE_OQ); }
bool isAny(__m256d mask) { return _mm256_movemask_pd(mask) != 0; }

__m256d sum(__m256d a, __m256d b) { return _mm256_add_pd(a, b); }
__m256d difference(__m256d a, __m256d b) { return _mm256_sub_pd(a, b); }
__m256d product(__m256d a, __m256d b) { return _mm256_mul_pd(a, b); }
__m256d quotient(__m256d a, __m256d b) { return _mm256_div_pd(a, b); }

void put(__m256d& to, __m256d v, __m256d mask) { to = _mm256_blendv_pd(to, v, mask); }
void put(__m128& to, __m256d v, __m256d mask) { to = _mm256_cvtpd_ps(_mm256_blendv_pd(wide(to), v, mask)); }

__m256d hypotenuse(__m256d a, __m256d b)
{
    const __m256d larger = _mm256_max_pd(magnitude(a), magnitude(b));
    const __m256d smaller = _mm256_min_pd(magnitude(a), magnitude(b));
    const __m256d ratio = quotient(smaller, larger);
    const __m256d root = _mm256_sqrt_pd(sum(number(1), product(ratio, ratio)));
    return _mm256_andnot_pd(isZero(larger), product(larger, root));
}

struct Householder {
    __m256d g, h;
    __m256d isNeeded;

    Householder(__m256d norm, __m128& x0)
    {
        const __m256d isSkipped = isZero(norm);
        const __m256d first = wide(x0);
        g = _mm256_andnot_pd(isSkipped, negated(withSignOf(_mm256_sqrt_pd(norm), first)));
        h = _mm256_andnot_pd(isSkipped, difference(product(first, g), norm));
        x0 = _mm256_cvtpd_ps(_mm256_blendv_pd(difference(first, g), first, isSkipped));
        isNeeded = _mm256_cmp_pd(h, _mm256_setzero_pd(), _CMP_NEQ_UQ);
    }
};

class BidiagonalLanes {
public:
    explicit BidiagonalLanes(size_t n) : n_(n) {}

    void reduce(size_t m, MatrixLanes& a)
    {
        __m256d factors[mostColumns] = {};
        for (size_t i = 0; i < n_ && i < m; ++i) {
            const auto dotWithColumn = [&](size_t c) {
                __m256d dot = _mm256_setzero_pd();
                for (size_t r = i; r < m; ++r) dot = sum(dot, product(wide(a[r][i]), wide(a[r][c])));
                return dot;
            };
            const Householder column(dotWithColumn(i), a[i][i]);
            w_[i] = _mm256_cvtpd_ps(column.g);
            for (size_t c = i + 1; c < n_; ++c) {
                const __m256d s = quotient(dotWithColumn(c), column.h);
                for (size_t r = i; r < m; ++r)
                    put(a[r][c], sum(wide(a[r][c]), product(s, wide(a[r][i]))), column.isNeeded);
            }
            if (i + 1 == n_)
                continue;
            __m256d norm = _mm256_setzero_pd();
            for (size_t c = i + 1; c < n_; ++c) norm = sum(norm, product(wide(a[i][c]), wide(a[i][c])));
            const Householder row(norm, a[i][i + 1]);
            above_[i + 1] = _mm256_cvtpd_ps(row.g);
            put(factors[i], quotient(number(1), row.h), row.isNeeded);
            for (size_t r = i + 1; r < m; ++r) addMultiple(a[i], a[r], i + 1, factors[i]);
        }
        for (size_t r = 0; r < n_; ++r)
            for (size_t c = 0; c < n_; ++c) vT_[r][c] = _mm_set1_ps(r == c ? 1.0F : 0.0F);
        for (size_t i = std::min(n_, m); i-- > 0;)
            for (size_t r = i + 1; r < n_; ++r) addMultiple(a[i], vT_[r], i + 1, factors[i]);
    }

    void diagonalise()
    {
        __m256d largest = _mm256_setzero_pd();
        for (size_t i = 0; i < n_; ++i)
            largest = _mm256_max_pd(largest, _mm256_max_pd(magnitude(wide(w_[i])), magnitude(wide(above_[i]))));
        negligible_ = product(number(epsilon), largest);
        for (size_t k = n_; k-- > 0;) {
            __m256d goesOn = _mm256_cmp_pd(largest, largest, _CMP_TRUE_UQ);
            for (int sweep = 0; sweep < mostSweeps; ++sweep) {
                const __m256d l = splitPoints(k, goesOn);
                goesOn = _mm256_andnot_pd(equals(l, k), goesOn);
                if (!isAny(goesOn))
                    break;
                sweepFrom(l, k, goesOn);
            }
            const __m256d isNegative = _mm256_cmp_pd(wide(w_[k]), _mm256_setzero_pd(), _CMP_LT_OQ);
            put(w_[k], negated(wide(w_[k])), isNegative);
            for (size_t c = 0; c < n_; ++c) put(vT_[k][c], negated(wide(vT_[k][c])), isNegative);
        }
    }

    // Of the largest value, of equal ones the first.
    RowLanes mainRow() const
    {
        RowLanes row = vT_[0];
        __m128 largest = w_[0];
        for (size_t r = 1; r < n_; ++r) {
            const __m128 isLarger = _mm_cmpgt_ps(w_[r], largest);
            largest = _mm_blendv_ps(largest, w_[r], isLarger);
            for (size_t c = 0; c < n_; ++c) row[c] = _mm_blendv_ps(row[c], vT_[r][c], isLarger);
        }
        return row;
    }

private:
    // y += h (y . x) x from column `first` on, in lanes where h is not 0.
    void addMultiple(const RowLanes& x, RowLanes& y, size_t first, __m256d h) const
    {
        const __m256d isNeeded = _mm256_cmp_pd(h, _mm256_setzero_pd(), _CMP_NEQ_UQ);
        __m256d dot = _mm256_setzero_pd();
        for (size_t c = first; c < n_; ++c) dot = sum(dot, product(wide(y[c]), wide(x[c])));
        const __m256d s = product(dot, h);
        for (size_t c = first; c < n_; ++c) put(y[c], sum(wide(y[c]), product(s, wide(x[c]))), isNeeded);
    }

    __m256d splitPoints(size_t k, __m256d isAsked)
    {
        __m256d points = _mm256_setzero_pd(), isCancelled = _mm256_setzero_pd();
        for (size_t l = k; l > 0; --l) {
            const __m256d point = number(static_cast<double>(l));
            const __m256d isSplit = _mm256_and_pd(isAsked, isAtMost(magnitude(wide(above_[l])), negligible_));
            isAsked = _mm256_andnot_pd(isSplit, isAsked);
            const __m256d isZeroBefore = _mm256_and_pd(isAsked, isAtMost(magnitude(wide(w_[l - 1])), negligible_));
            isAsked = _mm256_andnot_pd(isZeroBefore, isAsked);
            isCancelled = _mm256_or_pd(isCancelled, isZeroBefore);
            put(points, point, _mm256_or_pd(isSplit, isZeroBefore));
        }
        if (isAny(isCancelled))
            cancel(points, k, isCancelled);
        return points;
    }

    void cancel(__m256d l, size_t k, __m256d goesOn)
    {
        __m256d c = _mm256_setzero_pd(), s = number(1);
        for (size_t i = 1; i <= k; ++i) {
            const __m256d hasBegun = isAtMost(l, number(static_cast<double>(i)));
            const __m256d f = product(s, wide(above_[i]));
            put(above_[i], product(c, wide(above_[i])), _mm256_and_pd(goesOn, hasBegun));
            const __m256d isDone = _mm256_and_pd(hasBegun, isAtMost(magnitude(f), negligible_));
            goesOn = _mm256_andnot_pd(isDone, goesOn);
            const __m256d isHere = _mm256_and_pd(goesOn, hasBegun);
            const __m256d g = wide(w_[i]);
            const __m256d h = hypotenuse(f, g);
            put(w_[i], h, isHere);
            put(c, quotient(g, h), isHere);
            put(s, quotient(negated(f), h), isHere);
        }
    }

    void sweepFrom(__m256d l, size_t k, __m256d goesOn)
    {
        const __m256d z = wide(w_[k]), h0 = wide(above_[k]), g0 = wide(above_[k - 1]), y0 = wide(w_[k - 1]);
        __m256d x = wide(w_[0]);
        for (size_t i = 1; i < k; ++i) put(x, wide(w_[i]), equals(l, i));
        __m256d f = quotient(sum(product(difference(y0, z), sum(y0, z)), product(difference(g0, h0), sum(g0, h0))),
                             product(product(number(2), h0), y0));
        const __m256d shifted = sum(f, withSignOf(hypotenuse(f, number(1)), f));
        f = quotient(sum(product(difference(x, z), sum(x, z)), product(h0, difference(quotient(y0, shifted), h0))), x);
        __m256d c = number(1), s = number(1);
        for (size_t i = 1; i <= k; ++i) {
            const __m256d isHere = _mm256_and_pd(goesOn, _mm256_cmp_pd(l, number(static_cast<double>(i)), _CMP_LT_OQ));
            if (!isAny(isHere))
                continue;
            const __m256d h1 = product(s, wide(above_[i]));
            const __m256d g1 = product(c, wide(above_[i]));
            const __m256d r1 = hypotenuse(f, h1);
            put(above_[i - 1], r1, isHere);
            const __m256d isFlat1 = isZero(r1);
            const __m256d c1 = _mm256_blendv_pd(quotient(f, r1), number(1), isFlat1);
            const __m256d s1 = _mm256_andnot_pd(isFlat1, quotient(h1, r1));
            const __m256d f1 = sum(product(x, c1), product(g1, s1));
            const __m256d g2 = difference(product(g1, c1), product(x, s1));
            const __m256d h2 = product(wide(w_[i]), s1);
            const __m256d y2 = product(wide(w_[i]), c1);
            for (size_t column = 0; column < n_; ++column) {
                const __m256d a = wide(vT_[i - 1][column]), b = wide(vT_[i][column]);
                put(vT_[i - 1][column], sum(product(a, c1), product(b, s1)), isHere);
                put(vT_[i][column], difference(product(b, c1), product(a, s1)), isHere);
            }
            const __m256d r2 = hypotenuse(f1, h2);
            put(w_[i - 1], r2, isHere);
            const __m256d isFlat2 = isZero(r2);
            const __m256d c2 = _mm256_blendv_pd(quotient(f1, r2), c1, isFlat2);
            const __m256d s2 = _mm256_blendv_pd(quotient(h2, r2), s1, isFlat2);
            put(f, sum(product(c2, g2), product(s2, y2)), isHere);
            put(x, difference(product(c2, y2), product(s2, g2)), isHere);
            put(c, c2, isHere);
            put(s, s2, isHere);
        }
        for (size_t i = 0; i < k; ++i) put(above_[i], _mm256_setzero_pd(), _mm256_and_pd(goesOn, equals(l, i)));
        put(above_[k], f, goesOn);
        put(w_[k], x, goesOn);
    }

    size_t n_;
    __m256d negligible_ = _mm256_setzero_pd();
    RowLanes w_{}, above_{};
    std::array<RowLanes, mostColumns> vT_{};
};

}  // namespace

RowLanes mainAxes(int n, int m, MatrixLanes& a)
{
    BidiagonalLanes matrices(static_cast<size_t>(n));
    matrices.reduce(static_cast<size_t>(m), a);
    matrices.diagonalise();
    return matrices.mainRow();
}

}  // namespace q3
