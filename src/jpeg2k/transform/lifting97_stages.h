// What every arithmetic of the 9/7 filter says of itself.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING97_STAGES_H
#define VEK_JPEG2K_TRANSFORM_LIFTING97_STAGES_H

namespace q3 {

// Whether its first inverse stages take low and high samples as they are stored, or want them through low() and high();
// and whether the last ones give samples as they are stored, or want them put through sample().
struct PlainInverse {
    static constexpr bool bandsAsStored = true;
    static constexpr bool samplesAsStored = true;
};

}  // namespace q3

#endif
