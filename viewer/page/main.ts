import { everything } from '../model/filter';
import { Opener } from './Opener';
import { Shell } from './Shell';
import { Store } from '../views/store';
import { views } from './views';

const store = new Store({
  readings: [],
  profile: null,
  baseline: null,
  timechart: null,
  visible: null,
  filter: everything,
  search: '',
  place: -1,
  panel: 'flame',
});
const opener = new Opener(store);
new Shell(document.body, store, opener, views);
opener.openEmbedded(document);
