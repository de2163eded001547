#include "quillbar/base/Commands.h"

const uint32 QBFolder[10] = {'qbf0', 'qbf1', 'qbf2', 'qbf3', 'qbf4',
                             'qbf5', 'qbf6', 'qbf7', 'qbf8', 'qbf9'};

const uint32 QBSlot[10] = {'qbs0', 'qbs1', 'qbs2', 'qbs3', 'qbs4',
                           'qbs5', 'qbs6', 'qbs7', 'qbs8', 'qbs9'};
