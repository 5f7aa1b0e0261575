/** The views of the page, in the order of their tabs. */

import type { View } from '../views/View';

export const views: readonly View[] = [];
