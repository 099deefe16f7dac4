// Repacking between subsampled layouts: luma copied unchanged, chroma kept,
// dropped, doubled, folded or unfolded, every output byte a copy of one input
// byte. Each operation is one descriptor (sides from the catalogue, chroma
// rule, smallest region, cache-bypassing luma copies) and a one-line entry.
#include "impl_decls.h"
#include "subsampled/repack_rows.h"

using namespace kro;
using namespace kro::sub;
using namespace kro::sub::rep;

namespace {

// Rule, source, destination, smallest width and height (0: height not
// tested), luma copies bypassing the cache, +35 for an odd width, the size
// tested between the addresses and the plane elements, and (where given) the
// step array tested with the addresses.
constexpr Op kCbYCr422ToYCbCr422_C2R{Rule::Keep, c2(kCbYCr422C2), c2(kYCbCr422C2), 2, 1, Bypass::Never, false, false};
constexpr Op kCbYCr422ToYCbCr422_C2P3R{Rule::Keep, c2(kCbYCr422C2), p3(kYCbCr422P3), 2, 1, Bypass::Never, false, false};
constexpr Op kYCbCr422ToCbYCr422_C2R{Rule::Keep, c2(kYCbCr422C2), c2(kCbYCr422C2), 2, 1, Bypass::Never, false, false};
constexpr Op kYCbCr422ToCbYCr422_P3C2R{Rule::Keep, p3(kYCbCr422P3), c2(kCbYCr422C2), 2, 1, Bypass::Never, true, false};
constexpr Op kYCbCr422ToYCrCb422_C2R{Rule::Keep, c2(kYCbCr422C2), c2(kYCrCb422C2), 2, 0, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCrCb422_P3C2R{Rule::Keep, p3(kYCbCr422P3), c2(kYCrCb422C2), 2, 0, Bypass::Never, false, false};
constexpr Op kYCrCb422ToYCbCr422_C2P3R{Rule::Keep, c2(kYCrCb422C2), p3(kYCbCr422P3), 2, 1, Bypass::Never, false, false, true};
constexpr Op kYCbCr422_C2P3R{Rule::Keep, c2(kYCbCr422C2), p3(kYCbCr422P3), 2, 1, Bypass::Never, false, false, true};
constexpr Op kYCbCr422_P3C2R{Rule::Keep, p3(kYCbCr422P3), c2(kYCbCr422C2), 2, 1, Bypass::Never, false, false};
constexpr Op kYCbCr420_P2P3R{Rule::Keep, p2(kYCbCr420P2), p3(kYCbCr420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420_P3P2R{Rule::Keep, p3(kYCbCr420P3), p2(kYCbCr420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCrCb420_P2P3R{Rule::Keep, p2(kYCbCr420P2), p3(kYCbCr420P3), 2, 2, Bypass::Never, false, true};
constexpr Op kYCrCb420ToYCbCr420_P3P2R{Rule::Keep, p3(kYCrCb420P3), p2(kYCbCr420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr411_P2P3R{Rule::Keep, p2(kYCbCr411P2), p3(kYCbCr411P3), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411_P3P2R{Rule::Keep, p3(kYCbCr411P3), p2(kYCbCr411P2), 4, 0, Bypass::From348603, false, false};
constexpr Op kCbYCr422ToYCbCr420_C2P2R{Rule::DropRows, c2(kCbYCr422C2), p2(kYCbCr420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kCbYCr422ToYCbCr420_C2P3R{Rule::DropRows, c2(kCbYCr422C2), p3(kYCbCr420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kCbYCr422ToYCrCb420_C2P3R{Rule::DropRows, c2(kCbYCr422C2), p3(kYCrCb420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr420_C2P2R{Rule::DropRows, c2(kYCbCr422C2), p2(kYCbCr420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr420_C2P3R{Rule::DropRows, c2(kYCbCr422C2), p3(kYCbCr420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr420_P3P2R{Rule::DropRows, p3(kYCbCr422P3), p2(kYCbCr420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr420_P3R{Rule::DropRows, p3(kYCbCr422P3), p3(kYCbCr420P3), 2, 2, Bypass::From348603, false, false};
constexpr Op kYCbCr422ToYCrCb420_C2P2R{Rule::DropRows, c2(kYCbCr422C2), p2(kYCrCb420P2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCrCb420_C2P3R{Rule::DropRows, c2(kYCbCr422C2), p3(kYCrCb420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCrCb422ToYCbCr420_C2P3R{Rule::DropRows, c2(kYCrCb422C2), p3(kYCbCr420P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToCbYCr422_P2C2R{Rule::DoubleRows, p2(kYCbCr420P2), c2(kCbYCr422C2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCbCr422_P2C2R{Rule::DoubleRows, p2(kYCbCr420P2), c2(kYCbCr422C2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCbCr422_P2P3R{Rule::DoubleRows, p2(kYCbCr420P2), p3(kYCbCr422P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCbCr422_P3R{Rule::DoubleRows, p3(kYCbCr420P3), p3(kYCbCr422P3), 2, 2, Bypass::Never, false, false};
constexpr Op kYCrCb420ToCbYCr422_P3C2R{Rule::DoubleRows, p3(kYCrCb420P3), c2(kCbYCr422C2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCrCb420ToYCbCr422_P3C2R{Rule::DoubleRows, p3(kYCrCb420P3), c2(kYCbCr422C2), 2, 2, Bypass::Never, false, false};
constexpr Op kYCrCb420ToYCbCr422_P3R{Rule::DoubleRows, p3(kYCrCb420P3), p3(kYCbCr422P3), 2, 2, Bypass::Never, false, false};
constexpr Op kCbYCr422ToYCbCr411_C2P3R{Rule::DropCols, c2(kCbYCr422C2), p3(kYCbCr411P3), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr411_C2P2R{Rule::DropCols, c2(kYCbCr422C2), p2(kYCbCr411P2), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr411_C2P3R{Rule::DropCols, c2(kYCbCr422C2), p3(kYCbCr411P3), 4, 1, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr411_P3P2R{Rule::DropCols, p3(kYCbCr422P3), p2(kYCbCr411P2), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr422ToYCbCr411_P3R{Rule::DropCols, p3(kYCbCr422P3), p3(kYCbCr411P3), 4, 0, Bypass::Above524288, false, false};
constexpr Op kYCrCb422ToYCbCr411_C2P3R{Rule::DropCols, c2(kYCrCb422C2), p3(kYCbCr411P3), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCbCr422_P2C2R{Rule::DoubleCols, p2(kYCbCr411P2), c2(kYCbCr422C2), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCbCr422_P2P3R{Rule::DoubleCols, p2(kYCbCr411P2), p3(kYCbCr422P3), 4, 0, Bypass::From348603, false, false};
constexpr Op kYCbCr411ToYCbCr422_P3C2R{Rule::DoubleCols, p3(kYCbCr411P3), c2(kYCbCr422C2), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCbCr422_P3R{Rule::DoubleCols, p3(kYCbCr411P3), p3(kYCbCr422P3), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCrCb422_P3C2R{Rule::DoubleCols, p3(kYCbCr411P3), c2(kYCrCb422C2), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCrCb422_P3R{Rule::DoubleCols, p3(kYCbCr411P3), p3(kYCrCb422P3), 4, 0, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCbCr420_P2P3R{Rule::Fold, p2(kYCbCr411P2), p3(kYCbCr420P3), 4, 2, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCbCr420_P3P2R{Rule::Fold, p3(kYCbCr411P3), p2(kYCbCr420P2), 4, 2, Bypass::From348603, false, false};
constexpr Op kYCbCr411ToYCbCr420_P3R{Rule::Fold, p3(kYCbCr411P3), p3(kYCbCr420P3), 4, 2, Bypass::Never, false, false};
constexpr Op kYCbCr411ToYCrCb420_P2P3R{Rule::Fold, p2(kYCbCr411P2), p3(kYCrCb420P3), 4, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCbCr411_P2P3R{Rule::Unfold, p2(kYCbCr420P2), p3(kYCbCr411P3), 4, 2, Bypass::Never, false, false};
constexpr Op kYCbCr420ToYCbCr411_P3P2R{Rule::Unfold, p3(kYCbCr420P3), p2(kYCbCr411P2), 4, 2, Bypass::Never, false, false};
constexpr Op kYCrCb420ToYCbCr411_P3P2R{Rule::Unfold, p3(kYCrCb420P3), p2(kYCbCr411P2), 4, 2, Bypass::Never, false, false};

}  // namespace

KroStatus impl_kroiCbYCr422ToYCbCr422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return c2ToC2<kCbYCr422ToYCbCr422_C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiCbYCr422ToYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kCbYCr422ToYCbCr422_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToCbYCr422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return c2ToC2<kYCbCr422ToCbYCr422_C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToCbYCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCbCr422ToCbYCr422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCrCb422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return c2ToC2<kYCbCr422ToYCrCb422_C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCbCr422ToYCrCb422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb422ToYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCrCb422ToYCbCr422_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCbCr422_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCbCr422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr420_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr420_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCrCb420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr420ToYCrCb420_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb420ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCrCb420ToYCbCr420_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr411_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr411_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr411_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiCbYCr422ToYCbCr420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return c2ToP2<kCbYCr422ToYCbCr420_C2P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiCbYCr422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kCbYCr422ToYCbCr420_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiCbYCr422ToYCrCb420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kCbYCr422ToYCrCb420_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return c2ToP2<kYCbCr422ToYCbCr420_C2P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCbCr422ToYCbCr420_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr422ToYCbCr420_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr422ToYCbCr420_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCrCb420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return c2ToP2<kYCbCr422ToYCrCb420_C2P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCrCb420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCbCr422ToYCrCb420_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCrCb422ToYCbCr420_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToCbYCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p2ToC2<kYCbCr420ToCbYCr422_P2C2R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCbCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p2ToC2<kYCbCr420ToYCbCr422_P2C2R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCbCr422_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr420ToYCbCr422_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr420ToYCbCr422_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb420ToCbYCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCrCb420ToCbYCr422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb420ToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCrCb420ToYCbCr422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb420ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCrCb420ToYCbCr422_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiCbYCr422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kCbYCr422ToYCbCr411_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr411_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return c2ToP2<kYCbCr422ToYCbCr411_C2P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCbCr422ToYCbCr411_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr422ToYCbCr411_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr422ToYCbCr411_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr422ToYCbCr411_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCrCb422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return c2ToP3<kYCrCb422ToYCbCr411_C2P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p2ToC2<kYCbCr411ToYCbCr422_P2C2R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr422_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr411ToYCbCr422_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCbCr411ToYCbCr422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr411ToYCbCr422_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return p3ToC2<kYCbCr411ToYCrCb422_P3C2R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCrCb422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr411ToYCrCb422_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr411ToYCbCr420_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr411ToYCbCr420_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCbCr420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p3ToP3<kYCbCr411ToYCbCr420_P3R>(pSrc, srcStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr411ToYCrCb420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr411ToYCrCb420_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCbCr411_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    return p2ToP3<kYCbCr420ToYCbCr411_P2P3R>(pSrcY, srcYStep, pSrcCbCr, srcCbCrStep, pDst, dstStep, roiSize);
}

KroStatus impl_kroiYCbCr420ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCbCr420ToYCbCr411_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}

KroStatus impl_kroiYCrCb420ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return p3ToP2<kYCrCb420ToYCbCr411_P3P2R>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr, dstCbCrStep, roiSize);
}
