/** @file
 *  Umbrella header: everything that the library offers. */
#ifndef VEKJ_H
#define VEKJ_H

#include "vekj/jpeg2k_codeblock.h"
#include "vekj/jpeg2k_transform.h"
#include "vekj/jpeg_entropy.h"
#include "vekj/jpeg_samples.h"
#include "vekj/texture.h"
#include "vekj/tiff.h"
#include "vekj/types.h"
#include "vekj/version.h"

#endif
