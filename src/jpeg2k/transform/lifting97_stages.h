// What every arithmetic of the 9/7 filter says of itself.
#ifndef VEK_JPEG2K_TRANSFORM_LIFTING97_STAGES_H
#define VEK_JPEG2K_TRANSFORM_LIFTING97_STAGES_H

namespace q3 {

// Its first inverse stage takes low and high samples as they are stored, and the last ones give samples as they are
// stored. Otherwise low(), high() and sample() convert them.
struct PlainInverse {
    static constexpr bool plainInverse = true;
};
struct ConvertingInverse {
    static constexpr bool plainInverse = false;
};

}  // namespace q3

#endif
